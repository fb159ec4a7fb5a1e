#pragma once

#include <dataviews/platform/data/Variant.h>
#include <dataviews/platform/data/WeakPtr.h>
#include <dataviews/platform/pipeline/PlatformPipelineExport.h>
#include <dataviews/platform/property/ValueRange_s.h>

#include <boost/shared_ptr.hpp>

#include <set>
#include <string>

class FilterInterface;
class Variable;

/// Makes filters; they are enabled and in no pipeline yet.
class DATAVIEWS_PLATFORM_PIPELINE_EXPORT FilterFactoryInterface
{
public:
    /// What a filter keeps. Whoever asks for 0 asks for a range that can be drawn on an axis.
    enum FilterType
    {
        Range = 0, ///< the numbers inside a range
        InvertedRange, ///< the numbers outside a range
        ValueSet, ///< the values in a set, or all others
        Tag, ///< the cases with a tag, or all others
        NoFilter ///< there is no filter, or it is of a kind that this library does not make
    };

    FilterFactoryInterface() = default;
    FilterFactoryInterface(const FilterFactoryInterface&) = delete;
    FilterFactoryInterface& operator=(const FilterFactoryInterface&) = delete;
    virtual ~FilterFactoryInterface();

    /// Keeps the cases whose number lies in \p range, both ends included; inverted, those whose number
    /// lies outside. A missing value passes neither.
    /// \throws ExceptionBase if \p variable is gone or holds texts.
    /// \throws corvane::InvalidPropertyValueException if an end of \p range is NaN or the smaller end
    /// exceeds the larger one.
    [[nodiscard]] virtual boost::shared_ptr<FilterInterface> createRangeFilter(
        const WeakPtr<Variable>& variable,
        const ValueRange_s<double>& range,
        bool inverted) const = 0;

    /// Keeps the cases whose value is in \p values; inverted, all others. The empty value stands for a
    /// missing one.
    /// \throws ExceptionBase if \p variable is gone.
    [[nodiscard]] virtual boost::shared_ptr<FilterInterface> createValueSetFilter(
        const WeakPtr<Variable>& variable,
        const std::set<Variant>& values,
        bool inverted) const = 0;

    /// Keeps the cases that carry \p tag; inverted, all others.
    /// \throws ExceptionBase if \p tag is empty.
    [[nodiscard]] virtual boost::shared_ptr<FilterInterface> createTagFilter(
        const std::string& tag, bool inverted) const = 0;
};
