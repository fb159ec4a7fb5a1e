#pragma once

#include <string_view>

namespace analyzer {

/// The delimiter of the table that begins with \p head: comma, semicolon or tab, whichever parts the first rows most
/// evenly; comma for a table of one column. \p isWhole tells that nothing follows.
[[nodiscard]] char detectDelimiter(std::string_view head, bool isWhole);

} // namespace analyzer
