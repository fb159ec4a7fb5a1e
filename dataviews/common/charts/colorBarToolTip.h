#pragma once

#include <dataviews/common/charts/ChartsExport.h>

#include <dataviews/platform/property/ValueRange_s.h>

#include <string>

/// What a tool tip says of the color bar of the variable \p name, whose table has \p range and which shows
/// \p labelCount labels on a linear scale: the name, then the range to the last digit. Where the labels are too short
/// to tell neighbours apart, their full values follow, from the upper end of the bar to the lower, one a line.
[[nodiscard]] DATAVIEWS_CHARTS_EXPORT std::string colorBarToolTip(
    const std::string& name, const ValueRange_s<double>& range, int labelCount);
