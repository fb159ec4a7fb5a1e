#pragma once

#include <QByteArray>
#include <QDomDocument>

namespace analyzer {

/// The largest session that is read, in bytes.
constexpr int largestSession = 16 * 1024 * 1024;

/// Reads \p bytes as XML, which may come from anybody: what would take the parser more time, memory or stack than a
/// session needs is refused before it is parsed.
/// \throws SessionError with a sentence if the bytes are too many, hold a document type or a NUL, a tag is longer than 64
/// KiB or has more than 256 attributes, elements are nested more than 64 deep, it is no well-formed XML in UTF-8, or it
/// holds what no session has: processing instructions, CDATA sections, and texts between elements.
[[nodiscard]] QDomDocument readSessionXml(const QByteArray& bytes);

/// Checks that readSessionXml() takes \p bytes.
/// \throws SessionError if not.
void checkSessionXml(const QByteArray& bytes);

} // namespace analyzer
