#pragma once

#include <dataviews/platform/data/Variant.h>

#include <string>

/// \p value as people read it: integers whole, reals with six significant digits, texts as they are, and
/// "(missing)" for the empty value. Independent of the locale.
[[nodiscard]] DATAVIEWS_PLATFORM_DATA_EXPORT std::string variantDisplayText(const Variant& value);
