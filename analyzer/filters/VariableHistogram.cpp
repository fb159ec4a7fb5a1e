#include <analyzer/filters/VariableHistogram.h>

#include <dataviews/platform/data/Variable.h>

#include <QtGlobal>

#include <vtkDoubleArray.h>
#include <vtkIntArray.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace analyzer {

namespace {

/// A power of two that brings a range to a size at which differences neither overflow nor vanish.
double normalizingFactor(const ValueRange_s<double>& range)
{
    constexpr double tiny = 1e-200;
    constexpr int up = 600; // numbers that are so close to each other are small enough for it
    const double span = range.max - range.min;
    if (!std::isfinite(span)) {
        return 0.5;
    }
    return span < tiny ? std::ldexp(1.0, up) : 1.0;
}

template <class Number>
void addCounts(
    const Number* values,
    std::size_t valueCount,
    const ValueRange_s<double>& range,
    std::vector<std::size_t>& counts)
{
    const double factor = normalizingFactor(range);
    const double first = range.min * factor;
    const double span = range.max * factor - first;
    const double binsPerUnit = span > 0.0 ? static_cast<double>(counts.size()) / span : 0.0;
    const std::size_t last = counts.size() - 1;
    for (std::size_t row = 0; row < valueCount; ++row) {
        const double value = values[row];
        if (std::isfinite(value)) {
            const double place = (value * factor - first) * binsPerUnit;
            ++counts[std::min(static_cast<std::size_t>(place), last)];
        }
    }
}

} // namespace

VariableHistogram::VariableHistogram(const Variable& variable, std::size_t binCount)
    : m_counts(binCount, 0)
{
    Q_ASSERT_X(binCount > 0, "VariableHistogram", "there are no parts");
    Q_ASSERT_X(variable.isNumeric(), "VariableHistogram", "the variable holds texts");
    const ValueRange_s<double> range = variable.range();
    if (std::isnan(range.min)) {
        return;
    }
    const auto valueCount = static_cast<std::size_t>(variable.column().GetNumberOfTuples());
    if (vtkDoubleArray* reals = variable.realColumn()) {
        addCounts(reals->GetPointer(0), valueCount, range, m_counts);
    } else {
        auto* integers = vtkIntArray::SafeDownCast(&variable.column());
        addCounts(integers->GetPointer(0), valueCount, range, m_counts);
    }
    m_largestCount = *std::max_element(m_counts.begin(), m_counts.end());
}

} // namespace analyzer
