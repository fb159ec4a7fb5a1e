#pragma once

#include <QByteArray>

#include <string>

namespace analyzer {

struct Report;

/// \p report as one page of HTML in UTF-8, with its pictures inside: it refers to nothing outside and runs no script.
[[nodiscard]] QByteArray htmlReport(const Report& report);

/// Writes htmlReport() to the file \p path (UTF-8), as a whole or, with an error, not at all; see ReplacementFile.
/// \throws ExceptionBase with a sentence if the file cannot be written.
void writeHtmlReport(const std::string& path, const Report& report);

} // namespace analyzer
