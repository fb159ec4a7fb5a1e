#pragma once

#include <dataviews/platform/data/Variant.h>

#include <cstddef>
#include <vector>

class Variable;

namespace analyzer {

/// The most values that a filter by values lets choose from.
constexpr std::size_t maxFilterValues = 10000;

/// The different values of \p variable in ascending order, as a record gives them; the empty value comes first where
/// values are missing.
/// \throws ExceptionBase with a sentence if there are more than maxFilterValues besides the empty one.
[[nodiscard]] std::vector<Variant> filterValues(const Variable& variable);

} // namespace analyzer
