#include <analyzer/views/Chart3DAxis.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

namespace analyzer {

namespace {

std::string labels(const Chart3DAxis& axis)
{
    std::string text;
    for (const Chart3DAxis::Tick& tick : axis.ticks()) {
        text += (text.empty() ? "" : " ") + tick.label;
    }
    return text;
}

} // namespace

TEST(Chart3DAxisTest, TicksAreRoundNumbersWithAsManyDigitsAsTellThemApart)
{
    constexpr double infinite = std::numeric_limits<double>::infinity();

    const struct
    {
        ValueRange_s<double> data;
        const char* labels;
    } cases[] = {
        {{0.0, 10.0}, "0 2 4 6 8 10"},
        {{-0.3, 0.25}, "-0.3 -0.2 -0.1 0 0.1 0.2 0.3"},
        {{0.0, 2.4e-9}, "0 5e-10 1e-09 1.5e-09 2e-09 2.5e-09"},
        {{0.0, 4.1e9}, "0 1e+09 2e+09 3e+09 4e+09 5e+09"},
        {{1000000.0, 1000000.5}, "1000000.0 1000000.1 1000000.2 1000000.3 1000000.4 1000000.5"},
        {{0.37, 0.37}, "0.37"},
        {{std::nan(""), std::nan("")}, "0 1"},
        {{-infinite, infinite}, "0 1"}};

    for (const auto& axis : cases) {
        SCOPED_TRACE(axis.labels);
        EXPECT_EQ(labels(Chart3DAxis("Speed", axis.data)), axis.labels);
    }
}

TEST(Chart3DAxisTest, BoxCoversTheDataAlsoWhereItIsNarrowOrFarFromZero)
{
    const ValueRange_s<double> ranges[] = {
        {0.0, 10.0}, {-7.3, 12.9}, {1e9, 1e9 + 1.0}, {-1e300, 1e300}, {5.0, 5.0}, {1e20, 1e20}};

    for (const ValueRange_s<double>& range : ranges) {
        SCOPED_TRACE(range.max);
        const Chart3DAxis axis("Speed", range);
        EXPECT_GE(axis.toBox(range.min), -0.5F);
        EXPECT_LE(axis.toBox(range.max), 0.5F);
        if (range.min < range.max) {
            EXPECT_GT(axis.toBox(range.max) - axis.toBox(range.min), 0.5F);
        }
        for (const Chart3DAxis::Tick& tick : axis.ticks()) {
            EXPECT_LE(std::abs(tick.place), 0.500001F);
        }
    }
    EXPECT_FLOAT_EQ(Chart3DAxis("Speed", {5.0, 5.0}).toBox(5.0), 0.0F);
}

TEST(Chart3DAxisTest, WhatIsNotFiniteIsNowhere)
{
    const Chart3DAxis axis("Speed", {0.0, 10.0});

    for (const double value :
         {std::nan(""),
          std::numeric_limits<double>::infinity(),
          -std::numeric_limits<double>::infinity()}) {
        EXPECT_TRUE(std::isnan(axis.toBox(value)));
    }
}

} // namespace analyzer
