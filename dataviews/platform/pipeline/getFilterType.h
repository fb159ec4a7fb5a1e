#pragma once

#include <dataviews/platform/pipeline/FilterFactoryInterface.h>

/// What \p filter keeps now; inverting a range filter changes its type.
/// NoFilter, which is not 0, for an empty pointer and for an implementation from elsewhere.
[[nodiscard]] DATAVIEWS_PLATFORM_PIPELINE_EXPORT FilterFactoryInterface::FilterType getFilterType(
    const boost::shared_ptr<FilterInterface>& filter);
