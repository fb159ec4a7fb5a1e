#include <dataviews/platform/pipeline/RangeFilter.h>
#include <dataviews/platform/pipeline/TagFilter.h>
#include <dataviews/platform/pipeline/ValueSetFilter.h>
#include <dataviews/platform/pipeline/getFilterType.h>

FilterFactoryInterface::FilterType getFilterType(const boost::shared_ptr<FilterInterface>& filter)
{
    if (const auto* range = dynamic_cast<const RangeFilter*>(filter.get())) {
        return range->isInverted() ? FilterFactoryInterface::InvertedRange
                                   : FilterFactoryInterface::Range;
    }
    if (dynamic_cast<const ValueSetFilter*>(filter.get()) != nullptr) {
        return FilterFactoryInterface::ValueSet;
    }
    if (dynamic_cast<const TagFilter*>(filter.get()) != nullptr) {
        return FilterFactoryInterface::Tag;
    }
    return FilterFactoryInterface::NoFilter;
}
