#pragma once

#include <dataviews/common/charts/ChartsExport.h>

#include <dataviews/platform/property/ValueRange_s.h>

#include <vector>

/// The values that \p count labels show when they are spread evenly over the \p range of a color table, from its lower
/// end to its upper; a single label is in the middle. With \p isLogScale they are even in their logarithms.
///
/// What is zero but for rounding is exactly zero, so that it prints as such.
[[nodiscard]] DATAVIEWS_CHARTS_EXPORT std::vector<double> colorLabelValues(
    const ValueRange_s<double>& range, int count, bool isLogScale);
