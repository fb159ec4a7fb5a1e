#include <analyzer/filters/VariableHistogram.h>

#include <dataviews/platform/data/Variable.h>

#include <vtkDoubleArray.h>
#include <vtkIntArray.h>
#include <vtkNew.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

using analyzer::VariableHistogram;

namespace {

using Counts = std::vector<std::size_t>;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double missing = std::numeric_limits<double>::quiet_NaN();
constexpr double huge = std::numeric_limits<double>::max();
constexpr double least = std::numeric_limits<double>::denorm_min();

template <class Array, class Number>
Variable variable(const std::vector<Number>& values)
{
    const auto column = vtkSmartPointer<Array>::New();
    column->SetName("x");
    for (const Number value : values) {
        column->InsertNextValue(value);
    }
    return Variable(column, Variable::Output);
}

TEST(VariableHistogramTest, CountsUnusualNumbers)
{
    const struct
    {
        const char* what;
        std::vector<double> values;
        Counts counts;
    } cases[] = {
        {"edges count above, the largest in the last part", {0, 1, 2, 3, 4}, {1, 1, 1, 2}},
        {"missing and infinite", {missing, 0, infinity, -infinity, 4, missing}, {1, 0, 0, 1}},
        {"none", {}, {0, 0, 0, 0}},
        {"none finite", {missing, infinity}, {0, 0, 0, 0}},
        {"all equal", {7, 7, 7}, {3, 0, 0, 0}},
        {"a span that overflows", {-huge, -0.3 * huge, 0.0, 0.9 * huge, huge}, {1, 1, 1, 2}},
        {"as small as can be", {0.0, least, 2 * least, 4 * least}, {1, 1, 1, 1}},
        {"close together below zero", {-4 * least, -3 * least, 0.0}, {1, 1, 0, 1}},
        {"a span of two numbers", {1.0, std::nextafter(1.0, 2.0)}, {1, 0, 0, 1}},
    };

    for (const auto& sample : cases) {
        SCOPED_TRACE(sample.what);
        const VariableHistogram histogram(variable<vtkDoubleArray>(sample.values), 4);
        EXPECT_EQ(histogram.counts(), sample.counts);
        EXPECT_EQ(
            histogram.largestCount(),
            *std::max_element(sample.counts.begin(), sample.counts.end()));
    }
}

TEST(VariableHistogramTest, OnePartMoreThanStepsCountsEachWholeNumberAlone)
{
    for (std::size_t steps = 1; steps <= 64; ++steps) {
        std::vector<double> values;
        Counts expected;
        for (std::size_t number = 0; number <= steps; ++number) {
            expected.push_back(1 + number % 3);
            values.insert(values.end(), expected.back(), static_cast<double>(number) - 7.0);
        }
        SCOPED_TRACE(steps);
        EXPECT_EQ(
            VariableHistogram(variable<vtkDoubleArray>(values), steps + 1).counts(), expected);
    }
}

TEST(VariableHistogramTest, CountsIntegers)
{
    constexpr int max = std::numeric_limits<int>::max();
    constexpr int min = std::numeric_limits<int>::min();

    const VariableHistogram histogram(
        variable<vtkIntArray>(std::vector<int>{min, -1, 0, 1, max}), 2);

    EXPECT_EQ(histogram.counts(), (Counts{2, 3}));
}

} // namespace
