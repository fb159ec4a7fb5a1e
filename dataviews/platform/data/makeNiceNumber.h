#pragma once

#include <dataviews/platform/data/PlatformDataExport.h>

/// \p value rounded to a readable number: 1, 2 or 5 times a power of ten, the nearest in ratio, with the sign of
/// \p value. Zero, infinities and NaN stay as they are.
[[nodiscard]] DATAVIEWS_PLATFORM_DATA_EXPORT double makeNiceNumber(double value);
