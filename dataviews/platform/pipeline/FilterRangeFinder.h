#pragma once

#include <dataviews/platform/pipeline/PlatformPipelineExport.h>

#include <boost/shared_ptr.hpp>

#include <utility>

class FilterInterface;

/// Finds the limits that a range filter sets.
class DATAVIEWS_PLATFORM_PIPELINE_EXPORT FilterRangeFinder
{
public:
    explicit FilterRangeFinder(boost::shared_ptr<FilterInterface> filter);
    FilterRangeFinder(const FilterRangeFinder&) = delete;
    FilterRangeFinder& operator=(const FilterRangeFinder&) = delete;
    ~FilterRangeFinder();

    /// The lower and the upper limit of the filter as they are now, inverted or not; {NaN, NaN} for an
    /// empty pointer and for every filter that is not by range.
    [[nodiscard]] std::pair<double, double> range() const;

private:
    boost::shared_ptr<FilterInterface> m_filter;
};
