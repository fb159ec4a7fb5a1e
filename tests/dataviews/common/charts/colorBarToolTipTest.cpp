#include <dataviews/common/charts/colorBarToolTip.h>

#include <gtest/gtest.h>

#include <limits>

namespace {

TEST(ColorBarToolTipTest, GivesTheRangeInFullAndTheLabelsOnlyWhereTheyLookTheSame)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();

    const struct
    {
        ValueRange_s<double> range;
        int labels;
        const char* expected;
    } cases[] = {
        {{0.1, 1234567.875}, 3, "Drag\n0.1 to 1234567.875"},
        {{-0.0000001, 0.30000000000000004}, 3, "Drag\n-1e-07 to 0.30000000000000004"},
        {{1000000.0, 1000001.0}, 3, "Drag\n1e+06 to 1000001\n1000001\n1000000.5\n1e+06"},
        // Only the lower two of these look the same.
        {{99999.96875, 100000.84375},
         3,
         "Drag\n99999.96875 to 100000.84375\n100000.84375\n100000.40625\n99999.96875"},
        {{1000000.0, 1000001.0}, 1, "Drag\n1e+06 to 1000001"},
        {{1000000.0, 1000001.0}, 0, "Drag\n1e+06 to 1000001"},
        {{5.0, 5.0}, 2, "Drag\n5 to 5"},
        {{-infinity, infinity}, 2, "Drag\n-inf to inf"},
    };

    for (const auto& [range, labels, expected] : cases) {
        EXPECT_EQ(colorBarToolTip("Drag", range, labels), expected);
    }
}

} // namespace
