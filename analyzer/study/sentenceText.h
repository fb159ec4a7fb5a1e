#pragma once

#include <cstddef>
#include <string>

namespace analyzer {

/// \p text fit for one line of a message: control characters, line breaks among them, become blanks.
[[nodiscard]] std::string oneLine(std::string text);

/// \p text from a file, fit for a message: on one line, shortened where it is long, in double quotes.
[[nodiscard]] std::string inQuotes(const std::string& text);

/// Whether \p byte is a control character of ASCII.
[[nodiscard]] bool isControl(char byte);

/// "1 row", "2 rows": \p count with the word for it.
[[nodiscard]] std::string counted(
    std::size_t count, const std::string& one, const std::string& many);

} // namespace analyzer
