#pragma once

#include <dataviews/platform/pipeline/FilterFactoryInterface.h>

/// Makes RangeFilter, ValueSetFilter and TagFilter objects.
class DATAVIEWS_PLATFORM_PIPELINE_EXPORT FilterFactory : public FilterFactoryInterface
{
public:
    [[nodiscard]] boost::shared_ptr<FilterInterface> createRangeFilter(
        const WeakPtr<Variable>& variable,
        const ValueRange_s<double>& range,
        bool inverted) const override;
    [[nodiscard]] boost::shared_ptr<FilterInterface> createValueSetFilter(
        const WeakPtr<Variable>& variable,
        const std::set<Variant>& values,
        bool inverted) const override;
    [[nodiscard]] boost::shared_ptr<FilterInterface> createTagFilter(
        const std::string& tag, bool inverted) const override;
};
