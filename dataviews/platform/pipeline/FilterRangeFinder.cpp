#include <dataviews/platform/pipeline/FilterRangeFinder.h>
#include <dataviews/platform/pipeline/RangeFilter.h>

#include <limits>

FilterRangeFinder::FilterRangeFinder(boost::shared_ptr<FilterInterface> filter)
    : m_filter(std::move(filter))
{}

FilterRangeFinder::~FilterRangeFinder() = default;

std::pair<double, double> FilterRangeFinder::range() const
{
    if (const auto* filter = dynamic_cast<const RangeFilter*>(m_filter.get())) {
        return {filter->range().min, filter->range().max};
    }
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    return {nan, nan};
}
