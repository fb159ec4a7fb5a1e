#pragma once

#include <dataviews/common/charts/ChartsExport.h>

#include <dataviews/platform/property/ValueRange_s.h>

/// Whether a vtkAxis can divide \p range with ticks, upside down or not: VTK steps from tick to tick by adding the
/// interval, and does so forever where that changes nothing. False if an end is not finite or beyond 1e300, and if the
/// range is narrower than 1e-12 of its larger end, or than 1e-300.
[[nodiscard]] DATAVIEWS_CHARTS_EXPORT bool canBeDivided(const ValueRange_s<double>& range);

/// \p range, or where it cannot be divided, the closest one that can: ends are brought in to ±1e300, and a range that is
/// too narrow is widened about its middle. An end that is NaN is taken to be 1 away from the other; without any end
/// the range is 0 to 1.
[[nodiscard]] DATAVIEWS_CHARTS_EXPORT ValueRange_s<double> divisibleRange(
    const ValueRange_s<double>& range);
