#pragma once

#include <QString>

namespace analyzer {

/// \p text, which may quote what a file holds, as a sentence for people: one line that ends with one period, shortened
/// if it is very long.
[[nodiscard]] QString sentence(const QString& text);

} // namespace analyzer
