#include <dataviews/platform/data/makeNiceNumber.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace {

TEST(MakeNiceNumberTest, RoundsToOneTwoOrFiveTimesAPowerOfTen)
{
    const struct
    {
        double value;
        double nice;
    } cases[] = {
        {1.0, 1.0},
        {1.4, 1.0},
        {1.42, 2.0},
        {3.1, 2.0},
        {3.2, 5.0},
        {7.0, 5.0},
        {7.1, 10.0},
        {9.99, 10.0},
        {1000.0, 1000.0},
        {999.9, 1000.0},
        {0.3, 0.2},
        {0.0007, 0.0005},
        {-42.0, -50.0},
        {-0.03, -0.02},
        {1e308, 1e308},
        {1.7e308, 1e308},
        {5e-324, 5e-324},
        {2.3e-308, 2e-308},
    };

    for (const auto& c : cases) {
        EXPECT_EQ(makeNiceNumber(c.value), c.nice) << c.value;
    }
}

TEST(MakeNiceNumberTest, LeavesZeroInfinitiesAndNaN)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(makeNiceNumber(0.0), 0.0);
    EXPECT_TRUE(std::signbit(makeNiceNumber(-0.0)));
    EXPECT_EQ(makeNiceNumber(infinity), infinity);
    EXPECT_EQ(makeNiceNumber(-infinity), -infinity);
    EXPECT_TRUE(std::isnan(makeNiceNumber(std::numeric_limits<double>::quiet_NaN())));
}

TEST(MakeNiceNumberTest, IsTheNearestInRatioOfAllNiceNumbers)
{
    std::vector<double> nice;
    for (int exponent = -324; exponent <= 308; ++exponent) {
        for (const char* digit : {"1e", "2e", "5e"}) {
            const double number = std::strtod((digit + std::to_string(exponent)).c_str(), nullptr);
            if (number > 0.0 && std::isfinite(number)) {
                nice.push_back(number);
            }
        }
    }
    const auto distance = [](double left, double right) {
        return std::max(left, right) / std::min(left, right);
    };
    std::mt19937_64 random(1);
    for (int round = 0; round < 2000; ++round) {
        std::uint64_t bits = random();
        double value = 0.0;
        std::memcpy(&value, &bits, sizeof(value)); // all magnitudes alike, denormal ones included
        if (!std::isfinite(value) || value == 0.0) {
            continue;
        }
        const double magnitude = std::abs(value);
        const double rounded = makeNiceNumber(value);
        EXPECT_EQ(std::signbit(rounded), std::signbit(value));
        EXPECT_TRUE(std::binary_search(nice.begin(), nice.end(), std::abs(rounded))) << rounded;
        const double best =
            *std::min_element(nice.begin(), nice.end(), [&](double left, double right) {
                return distance(left, magnitude) < distance(right, magnitude);
            });
        EXPECT_DOUBLE_EQ(distance(std::abs(rounded), magnitude), distance(best, magnitude))
            << value;
    }
}

} // namespace
