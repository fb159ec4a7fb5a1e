#include <dataviews/platform/property/ValueRange_s.h>

#include <gtest/gtest.h>

#include <limits>
#include <type_traits>

namespace {

static_assert(std::is_same_v<corvane::ValueRange_s<double>, ::ValueRange_s<double>>);

TEST(ValueRangeTest, EqualsWhereBothEndsDoAndWithNaNNothing)
{
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE((ValueRange_s<double>{-1.0, 2.0}) == (ValueRange_s<double>{-1.0, 2.0}));
    EXPECT_TRUE((ValueRange_s<double>{-1.0, 2.0}) != (ValueRange_s<double>{-1.0, 3.0}));
    EXPECT_TRUE((ValueRange_s<double>{-1.0, 2.0}) != (ValueRange_s<double>{0.0, 2.0}));
    for (const ValueRange_s<double> range :
         {ValueRange_s<double>{nan, 1.0}, {1.0, nan}, {nan, nan}}) {
        EXPECT_FALSE(range == range);
        EXPECT_TRUE(range != range);
    }
}

} // namespace
