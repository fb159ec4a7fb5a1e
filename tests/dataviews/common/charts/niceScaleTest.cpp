#include <dataviews/common/charts/colorLabelValues.h>
#include <dataviews/common/charts/niceScale.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double largest = std::numeric_limits<double>::max();
constexpr double smallest = std::numeric_limits<double>::denorm_min();

TEST(NiceScaleTest, GivesTheScalesItShould)
{
    const struct
    {
        double min;
        double max;
        int intervals;
        NiceScale expected;
    } cases[] = {
        {0.0, 1.0, 15, {0.0, 0.1, 10}},
        {0.0, 7.0, 15, {0.0, 0.5, 14}},
        {0.0, 1.0, 8, {0.0, 0.1, 10}}, // 10 are closer to 8 than 5 are
        {-1.0, 1.0, 4, {-1.0, 0.5, 4}},
        {-7.0, 12.0, 3, {-10.0, 10.0, 3}},
        {0.0, 250.0, 5, {0.0, 50.0, 5}},
        {1e-7, 1.0, 15, {0.0, 0.1, 10}},
        // Narrow and far from zero: no rounder number below.
        {1e8, 1e8 + 1.0, 15, {1e8, 0.1, 10}},
        // No width.
        {0.0, 0.0, 15, {0.0, 1.0, 0}},
        {4.0, 4.0, 15, {4.0, 1.0, 0}},
        {3.5, 3.5, 15, {3.0, 1.0, 1}},
        {-1.5, -1.5, 15, {-2.0, 1.0, 1}},
        {1e300, 1e300, 15, {1e300, 1.0, 0}},
        {0.0, smallest, 15, {0.0, 1.0, 1}},
        // More intervals than are ever made.
        {0.0, 1000.0, 1000, {0.0, 1.0, 1}},
        // Inverted.
        {5.0, 1.0, 15, {5.0, 1.0, 0}},
    };

    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.min << " to " << c.max << " in " << c.intervals);
        const NiceScale scale = niceScale(c.min, c.max, c.intervals);
        EXPECT_EQ(scale.start, c.expected.start);
        EXPECT_DOUBLE_EQ(scale.step, c.expected.step);
        EXPECT_EQ(scale.count, c.expected.count);
    }
}

TEST(NiceScaleTest, RangesBeyondArithmeticGetTheScaleOfNothing)
{
    const struct
    {
        double min;
        double max;
    } cases[] = {
        {nan, nan},
        {nan, 1.0},
        {0.0, nan},
        {0.0, infinity},
        {-infinity, 0.0},
        {-infinity, infinity},
        {infinity, infinity},
        {-largest, largest}, // the width overflows
        {-8.9e307, 8.9e307}, // the width of the widened range does
        {0.0, largest}, // the upper end does
        {3e9, 0.0}, // inverted by more steps than an int can tell
    };

    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.min << " to " << c.max);
        const NiceScale scale = niceScale(c.min, c.max, 15);
        EXPECT_EQ(scale.start, 0.0);
        EXPECT_EQ(scale.step, 1.0);
        EXPECT_EQ(scale.count, 1);
    }
}

std::string printed(double value)
{
    char text[64];
    std::snprintf(text, sizeof text, "%G", value);
    return text;
}

/// Checks the scale of one range and what is printed on it.
void check(double min, double max, int intervals)
{
    SCOPED_TRACE(
        testing::Message() << std::hexfloat << min << " to " << max << " in " << intervals);
    const NiceScale scale = niceScale(min, max, intervals);
    const double end = scale.start + scale.count * scale.step;
    ASSERT_TRUE(std::isfinite(scale.start) && std::isfinite(end - scale.start));
    ASSERT_TRUE(scale.step > 0.0 && std::isfinite(scale.step));
    ASSERT_GE(scale.count, 0);
    ASSERT_LE(scale.count, intervals * 3 / 2 + 2) << "A target is not to be missed by more.";
    ASSERT_LT(scale.count, 64) << "A color bar has at most 64 labels.";

    const double magnitude = std::max(std::abs(scale.start), std::abs(end));
    const double rounding =
        1e-8 * scale.step + 4.0 * std::numeric_limits<double>::epsilon() * magnitude;
    const bool isScaleOfNothing = scale.start == 0.0 && scale.step == 1.0 && scale.count == 1;
    if (min <= max && !isScaleOfNothing) {
        EXPECT_LE(scale.start, min + rounding);
        EXPECT_GE(end, max - rounding);
    }

    const std::vector<double> labels = colorLabelValues({scale.start, end}, scale.count + 1, false);
    const double sixthDigit = std::pow(10.0, std::floor(std::log10(magnitude)) - 5.0);
    const bool canBeToldApart = scale.step > 1.001 * sixthDigit;
    for (std::size_t i = 0; i < labels.size(); ++i) {
        EXPECT_GE(labels[i], scale.start - rounding);
        EXPECT_LE(labels[i], end + rounding);
        const double value = scale.start + static_cast<double>(i) * scale.step;
        if (std::abs(value) < 1e-9 * scale.step) {
            EXPECT_EQ(printed(labels[i]), "0");
        }
        if (i > 0 && canBeToldApart) {
            EXPECT_NE(printed(labels[i]), printed(labels[i - 1]));
        }
    }
}

TEST(NiceScaleTest, RandomRangesHaveSaneScalesAndLabels)
{
    std::mt19937_64 random(1);
    const auto between = [&random](double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(random);
    };
    const auto oneOf = [&random](int count) {
        return std::uniform_int_distribution<int>(0, count - 1)(random);
    };
    const auto number = [&] {
        const double special[] = {
            0.0, -0.0, 1.0, smallest, -smallest, 1e308, -1e308, largest, infinity, -infinity, nan};
        switch (oneOf(4)) {
        case 0:
            return special[oneOf(11)];
        case 1:
            return std::copysign(std::pow(10.0, between(-323.0, 308.0)), between(-1.0, 1.0));
        case 2:
            return std::round(between(-1000.0, 1000.0));
        default:
            return between(-10.0, 10.0);
        }
    };
    constexpr int rounds = 100000;
    for (int round = 0; round < rounds && !HasFailure(); ++round) {
        const double min = number();
        double max = number();
        switch (oneOf(4)) {
        case 0: // as it is, often inverted
            break;
        case 1:
            max = min;
            break;
        case 2: // narrow beside its distance from zero
            max = min + std::abs(min) * std::pow(10.0, between(-17.0, 0.0));
            break;
        default:
            max = std::max(min, max);
        }
        check(min, max, 3 + oneOf(38));
    }
}

} // namespace
