#pragma once

#include <dataviews/platform/data/RowBitmap.h>

#include <cstddef>
#include <string>

namespace analyzer {

/// The cases in \p rows as text, counted from 1: ranges, "1-40,57", or, where that is shorter, "base64:" and the bits in
/// Base64, eight cases a byte, the first one lowest.
[[nodiscard]] std::string caseSetText(const RowBitmap& rows);

/// The opposite, for a study of \p caseCount cases. Blanks and line breaks around ranges are allowed.
/// \throws SessionError if \p text is no such text or names a case beyond the last.
[[nodiscard]] RowBitmap parseCaseSet(const std::string& text, std::size_t caseCount);

} // namespace analyzer
