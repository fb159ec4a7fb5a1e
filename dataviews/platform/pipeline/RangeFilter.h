#pragma once

#include <dataviews/platform/pipeline/FilterAbstract.h>
#include <dataviews/platform/property/ValueRange_s.h>

/// Keeps the cases whose number lies in a range, both ends included; inverted, those whose number
/// lies outside.
///
/// A missing value lies nowhere: it passes neither the filter nor its inversion. An end may be
/// infinite, which leaves that side open.
class DATAVIEWS_PLATFORM_PIPELINE_EXPORT RangeFilter : public FilterAbstract
{
public:
    /// \throws ExceptionBase if \p variable is gone or holds texts.
    /// \throws corvane::InvalidPropertyValueException as setRange() does.
    RangeFilter(
        const WeakPtr<Variable>& variable,
        const ValueRange_s<double>& range,
        bool inverted = false);
    RangeFilter(const RangeFilter&) = delete;
    RangeFilter& operator=(const RangeFilter&) = delete;
    ~RangeFilter() override;

    [[nodiscard]] ValueRange_s<double> range() const;

    /// \throws corvane::InvalidPropertyValueException if an end of \p range is NaN or the smaller end
    /// exceeds the larger one; the filter keeps its range then.
    void setRange(const ValueRange_s<double>& range);

    void apply(const Project& project, RowBitmap& rows) const override;

private:
    ValueRange_s<double> m_range;
};
