#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/pipeline/RangeFilter.h>
#include <dataviews/platform/pipeline/boundVariable.h>
#include <dataviews/platform/pipeline/keepRows.h>
#include <dataviews/platform/property/ExceptionBase.h>
#include <dataviews/platform/property/InvalidPropertyValueException.h>

#include <QtGlobal>

#include <vtkDoubleArray.h>
#include <vtkIntArray.h>

#include <cmath>

namespace {

void checkRange(const ValueRange_s<double>& range)
{
    if (std::isnan(range.min) || std::isnan(range.max)) {
        throw corvane::InvalidPropertyValueException("Both ends of a range must be numbers.");
    }
    if (range.min > range.max) {
        throw corvane::InvalidPropertyValueException(
            "The smaller end of a range must not exceed the larger one; "
            + Variant(range.min).toString() + " is greater than " + Variant(range.max).toString()
            + ".");
    }
}

// Comparisons joined without short cuts: every one with a NaN is false, and nothing jumps.
template <class Number>
void keepRange(
    const Number* values, const ValueRange_s<double>& range, bool inverted, RowBitmap& rows)
{
    const double min = range.min;
    const double max = range.max;
    if (inverted) {
        keepRows(rows, [=](std::size_t row) {
            const double value = values[row];
            return static_cast<unsigned>(value < min) | static_cast<unsigned>(value > max);
        });
    } else {
        keepRows(rows, [=](std::size_t row) {
            const double value = values[row];
            return static_cast<unsigned>(value >= min) & static_cast<unsigned>(value <= max);
        });
    }
}

} // namespace

RangeFilter::RangeFilter(
    const WeakPtr<Variable>& variable, const ValueRange_s<double>& range, bool inverted)
    : FilterAbstract(variable, inverted)
    , m_range(range)
{
    const boost::shared_ptr<Variable> locked = variable.lock();
    if (!locked->isNumeric()) {
        throw ExceptionBase(
            "Variable \"" + locked->name() + "\" holds texts and cannot be filtered by a range.");
    }
    checkRange(range);
}

RangeFilter::~RangeFilter() = default;

ValueRange_s<double> RangeFilter::range() const
{
    return m_range;
}

void RangeFilter::setRange(const ValueRange_s<double>& range)
{
    checkRange(range);
    if (range == m_range) {
        return;
    }
    m_range = range;
    emitFilterChanged();
}

void RangeFilter::apply(const Project& project, RowBitmap& rows) const
{
    Q_ASSERT_X(
        rows.rowCount() == project.caseCount(),
        "RangeFilter::apply",
        "the bitmap is not of this project's cases");
    const boost::shared_ptr<Variable> bound = boundVariable(project, variable());
    if (!bound) {
        return;
    }
    if (vtkDoubleArray* reals = bound->realColumn()) {
        keepRange(reals->GetPointer(0), m_range, isInverted(), rows);
    } else {
        auto* integers = vtkIntArray::SafeDownCast(&bound->column());
        keepRange(integers->GetPointer(0), m_range, isInverted(), rows);
    }
}
