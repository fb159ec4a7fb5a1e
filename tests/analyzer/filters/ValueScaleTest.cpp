#include <analyzer/filters/ValueScale.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using analyzer::ValueScale;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double huge = std::numeric_limits<double>::max();
constexpr double least = std::numeric_limits<double>::denorm_min();

TEST(ValueScaleTest, GivesNumbersThatAreShortToWrite)
{
    const ValueScale scale({0.01, 0.987654321}, false);

    EXPECT_EQ(scale.value(0.0), 0.01);
    EXPECT_EQ(scale.value(1.0), 0.987654321);
    EXPECT_EQ(scale.value(0.3), 0.303);
    EXPECT_EQ(scale.stepped(0.3, 0.01), 0.31);
    EXPECT_EQ(scale.stepped(0.3, -0.1), 0.202);

    const ValueScale wide({-1234567.0, 7654321.0}, false);
    EXPECT_EQ(wide.value(0.5), 3210000.0);
}

TEST(ValueScaleTest, WholeNumbersStepByOneAtLeast)
{
    const ValueScale scale({1.0, 9.0}, true);

    EXPECT_EQ(scale.value(0.4), 4.0);
    EXPECT_EQ(scale.stepped(4.0, 0.01), 5.0);
    EXPECT_EQ(scale.stepped(4.0, -0.01), 3.0);
    EXPECT_EQ(scale.stepped(4.5, 0.01), 5.0);
    EXPECT_EQ(scale.stepped(4.5, -0.01), 4.0);
    EXPECT_EQ(scale.stepped(8.0, 0.1), 9.0);
    EXPECT_EQ(scale.stepped(9.0, 0.1), 9.0);
    EXPECT_EQ(scale.stepped(5.0, -1.0), 1.0);
}

TEST(ValueScaleTest, NumbersOutsideCountAsTheEnds)
{
    const ValueScale scale({2.0, 4.0}, false);

    EXPECT_EQ(scale.position(-infinity), 0.0);
    EXPECT_EQ(scale.position(1.0), 0.0);
    EXPECT_EQ(scale.position(3.0), 0.5);
    EXPECT_EQ(scale.position(infinity), 1.0);
    EXPECT_EQ(scale.stepped(-infinity, 0.5), 3.0);
    EXPECT_EQ(scale.stepped(infinity, 0.01), 4.0);
}

TEST(ValueScaleTest, EveryRangeIsMappedInOrderAndWithoutAStandstill)
{
    const ValueRange_s<double> ranges[] = {
        {0.0, 1.0},
        {-huge, huge},
        {-1e308, 1.5e308},
        {1e-300, 3e-300},
        {0.0, least},
        {-3 * least, 2 * least},
        {1.0, std::nextafter(1.0, 2.0)},
        {1e15, 1e15 + 1.0},
        {-1e6, -1e6 + 1e-5}};
    for (const ValueRange_s<double>& range : ranges) {
        SCOPED_TRACE(range.max);
        const ValueScale scale(range, false);
        double last = range.min;
        for (int step = 0; step <= 1000; ++step) {
            const double value = scale.value(step / 1000.0);
            ASSERT_GE(value, last);
            ASSERT_LE(value, range.max);
            last = value;
        }
        EXPECT_EQ(last, range.max);

        int steps = 0;
        double value = range.min;
        while (value < range.max && steps < 200) {
            const double next = scale.stepped(value, 0.01);
            ASSERT_GT(next, value);
            ASSERT_LE(scale.position(value), scale.position(next));
            value = next;
            ++steps;
        }
        EXPECT_EQ(value, range.max);
        EXPECT_LE(steps, 101);
        EXPECT_LT(scale.stepped(range.max, -0.01), range.max);
    }
}

} // namespace
