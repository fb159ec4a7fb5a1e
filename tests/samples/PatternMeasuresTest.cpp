#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <stdexcept>

#include <samples/PatternMeasures.h>

namespace {

using samples::PatternMeasures;

constexpr double pi = 3.14159265358979323846;

using Function = std::function<double(double x, double y)>;

std::vector<float> sampled(std::size_t side, const Function& function)
{
    std::vector<float> field;
    for (std::size_t y = 0; y < side; ++y) {
        for (std::size_t x = 0; x < side; ++x) {
            field.push_back(
                static_cast<float>(function(static_cast<double>(x), static_cast<double>(y))));
        }
    }
    return field;
}

/// A wave that runs \p wavesX and \p wavesY times over the field.
Function wave(std::size_t side, double wavesX, double wavesY)
{
    return [=](double x, double y) {
        return 0.2
            + 0.1 * std::cos(2.0 * pi * (wavesX * x + wavesY * y) / static_cast<double>(side));
    };
}

/// Cones of \p radius at mid level around the points of a square lattice \p spacing apart, which begins
/// at 0, so that the first ones lie across the edges.
Function cones(double spacing, double radius)
{
    return [=](double x, double y) {
        const double distance = std::hypot(std::remainder(x, spacing), std::remainder(y, spacing));
        return 0.5 * std::max(0.0, 1.0 - distance / (2.0 * radius));
    };
}

TEST(PatternMeasuresTest, MomentsOfACosine)
{
    const PatternMeasures measures(sampled(64, wave(64, 8, 0)), 64);

    EXPECT_NEAR(measures.mean(), 0.2, 1e-6);
    EXPECT_NEAR(measures.deviation(), 0.1 / std::sqrt(2.0), 1e-6);
}

TEST(PatternMeasuresTest, WavelengthInEveryDirectionAndForEverySide)
{
    struct Case
    {
        std::size_t side;
        double wavesX;
        double wavesY;
    };

    for (const Case& test :
         {Case{64, 8, 0}, Case{64, 0, 8}, Case{64, 3, -4}, Case{96, 5, 5}, Case{45, 7, 2}}) {
        SCOPED_TRACE(test.wavesY);
        const std::vector<float> field =
            sampled(test.side, wave(test.side, test.wavesX, test.wavesY));

        const PatternMeasures measures(field, test.side);

        const double expected =
            static_cast<double>(test.side) / std::hypot(test.wavesX, test.wavesY);
        EXPECT_NEAR(measures.wavelength(), expected, 1e-3);
    }
}

TEST(PatternMeasuresTest, TheStrongerWaveDecides)
{
    const Function strong = wave(64, 6, 0);
    const Function weak = wave(64, 0, 15);
    const std::vector<float> field =
        sampled(64, [&](double x, double y) { return strong(x, y) + 0.5 * weak(x, y); });

    EXPECT_NEAR(PatternMeasures(field, 64).wavelength(), 64.0 / 6.0, 1e-3);
}

TEST(PatternMeasuresTest, InterfaceOfStraightStripesIsExact)
{
    // Four stripes with two sides each, across the whole field.
    const PatternMeasures measures(sampled(64, wave(64, 4, 0)), 64);

    EXPECT_NEAR(measures.interfaceLength(), 8.0 * 64.0, 1e-3);
    // Four points of each period lie on the mid level or within rounding of it.
    EXPECT_NEAR(measures.coveredFraction(), 0.5, 4.0 * 2.0 / 64.0);
}

TEST(PatternMeasuresTest, InterfaceAndAreaOfADisc)
{
    constexpr double radius = 12.0;
    // One disc, whose four quarters lie in the corners.
    const PatternMeasures measures(sampled(64, cones(64, radius)), 64);

    EXPECT_NEAR(measures.interfaceLength(), 2.0 * pi * radius, 0.01 * 2.0 * pi * radius);
    EXPECT_NEAR(measures.coveredFraction(), pi * radius * radius / (64.0 * 64.0), 0.005);
}

TEST(PatternMeasuresTest, TheMiddleOfASaddleDecidesWhatIsJoined)
{
    // A chequerboard of 0.6 and 0.2, on which every square of four points is a saddle with 0.4 in its middle.
    // One point of 0.8 lifts the mid level to 0.5: the low points are joined, the contour goes around the high ones.
    constexpr std::size_t side = 8;
    const Function board = [](double x, double y) {
        const bool isHigh = std::fmod(x + y, 2.0) == 0.0;
        return x == 2.0 && y == 2.0 ? 0.8 : (isHigh ? 0.6 : 0.2);
    };
    const Function mirrored = [&](double x, double y) { return 0.8 - board(x, y); };
    // Each high point is cut off a quarter of the way to its neighbours in four squares, the highest one half
    // of the way. Of two high points in each of the 64 squares that makes:
    const double expected = std::sqrt(2.0) * (124.0 * 0.25 + 4.0 * 0.5);

    EXPECT_NEAR(PatternMeasures(sampled(side, board), side).interfaceLength(), expected, 1e-4);
    EXPECT_NEAR(PatternMeasures(sampled(side, mirrored), side).interfaceLength(), expected, 1e-4);
}

TEST(PatternMeasuresTest, KindsOfPattern)
{
    const Function spots = cones(16, 4);
    const Function stripes = wave(64, 4, 0);

    struct Case
    {
        const char* kind;
        Function function;
    };

    const Case cases[] = {
        {"died out", [](double, double) { return 0.0; }},
        {"died out", [](double x, double) { return x < 10 ? 0.019 : 0.0; }},
        {"uniform", [](double x, double) { return x < 10 ? 0.319 : 0.3; }},
        {"spots", spots},
        {"holes", [&](double x, double y) { return 0.6 - spots(x, y); }},
        {"stripes", stripes},
        {"stripes", wave(64, 4, 4)},
        {"mixed",
         [&](double x, double y) {
             return y >= 6 && y < 42 ? spots(x, y) : 2.0 * (stripes(x, y) - 0.1);
         }},
        {"mixed", wave(64, 1, 0)},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(&test - cases);
        EXPECT_EQ(PatternMeasures(sampled(64, test.function), 64).kind(), test.kind);
    }
}

TEST(PatternMeasuresTest, WithoutAPatternOnlyTheMomentsAreThere)
{
    for (const float level : {0.0F, 0.25F}) {
        SCOPED_TRACE(level);
        const PatternMeasures measures(std::vector<float>(16 * 16, level), 16);

        EXPECT_FALSE(measures.hasPattern());
        EXPECT_EQ(measures.mean(), level);
        EXPECT_EQ(measures.deviation(), 0.0);
        EXPECT_TRUE(std::isnan(measures.wavelength()));
        EXPECT_TRUE(std::isnan(measures.interfaceLength()));
        EXPECT_TRUE(std::isnan(measures.coveredFraction()));
    }
    EXPECT_TRUE(PatternMeasures(sampled(16, wave(16, 4, 0)), 16).hasPattern());
}

TEST(PatternMeasuresTest, RefusesWhatIsNoField)
{
    std::vector<float> withNaN(64, 0.1F);
    withNaN[3] = std::numeric_limits<float>::quiet_NaN();

    EXPECT_THROW(PatternMeasures(std::vector<float>(63), 8), std::invalid_argument);
    EXPECT_THROW(PatternMeasures(std::vector<float>(9), 3), std::invalid_argument);
    EXPECT_THROW(PatternMeasures(withNaN, 8), std::invalid_argument);
}

} // namespace
