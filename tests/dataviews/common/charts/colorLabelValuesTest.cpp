#include <dataviews/common/charts/colorLabelValues.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using testing::Each;
using testing::ElementsAre;

TEST(ColorLabelValuesTest, AreEvenlySpreadFromEndToEnd)
{
    EXPECT_THAT(colorLabelValues({-1.0, 1.0}, 3, false), ElementsAre(-1.0, 0.0, 1.0));
    EXPECT_THAT(colorLabelValues({2.0, 8.0}, 4, false), ElementsAre(2.0, 4.0, 6.0, 8.0));
    EXPECT_THAT(colorLabelValues({2.0, 8.0}, 1, false), ElementsAre(5.0));
    EXPECT_THAT(colorLabelValues({2.0, 8.0}, 0, false), ElementsAre());
    EXPECT_THAT(colorLabelValues({3.0, 3.0}, 2, false), ElementsAre(3.0, 3.0));

    const auto powers = colorLabelValues({0.01, 100.0}, 5, true);
    ASSERT_EQ(powers.size(), 5U);
    for (std::size_t i = 0; i < powers.size(); ++i) {
        EXPECT_NEAR(std::log10(powers[i]), static_cast<double>(i) - 2.0, 1e-12);
    }
    EXPECT_NEAR(colorLabelValues({0.01, 10000.0}, 1, true).front(), 10.0, 1e-12);
}

TEST(ColorLabelValuesTest, ZeroButForRoundingIsZero)
{
    const struct
    {
        ValueRange_s<double> range;
        int count;
        int index;
        double expected;
    } cases[] = {
        {{-1.38778e-17, 1.0}, 11, 0, 0.0},
        {{1e-6, 1e-6 + 1e-3}, 2, 0, 1e-6}, // a thousandth of the spacing
        {{1e-6, 1.0 + 1e-6}, 2, 0, 0.0}, // a millionth of it
        {{2e-5, 1e3}, 2, 0, 2e-5}, // too large
        {{1e-6, 1e-6}, 2, 0, 1e-6}, // no spacing
        {{1e-6, 1e-6}, 1, 0, 1e-6},
        {{-0.3, 0.6}, 10, 3, 0.0},
        {{-3e15, 7e15}, 11, 3, 0.0}, // where rounding is larger than any fixed bound
        {{-7e300, 3e300}, 11, 7, 0.0},
    };

    for (const auto& c : cases) {
        const auto values = colorLabelValues(c.range, c.count, false);
        EXPECT_EQ(values[static_cast<std::size_t>(c.index)], c.expected)
            << c.range.min << " to " << c.range.max;
    }
}

TEST(ColorLabelValuesTest, RangesThatHaveNoValuesGiveNaN)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const auto isNaN = testing::IsNan();
    EXPECT_THAT(colorLabelValues({nan, nan}, 3, false), Each(isNaN));
    EXPECT_THAT(colorLabelValues({-1.0, -2.0}, 3, true), Each(isNaN));
}

} // namespace
