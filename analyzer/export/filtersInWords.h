#pragma once

#include <string>
#include <vector>

namespace analyzer {

class FilterList;
class ListedFilter;

/// What cases \p filter lets pass, for people: "Drag between 1 and 2", "Material is one of A, B (2 of 7 values)", "not
/// tagged good". On one line, UTF-8; whether it is switched off does not matter.
[[nodiscard]] std::string filterInWords(const ListedFilter& filter);

/// The filters of \p filters in order, those that are switched off with " (switched off)" behind them.
[[nodiscard]] std::vector<std::string> filtersInWords(const FilterList& filters);

} // namespace analyzer
