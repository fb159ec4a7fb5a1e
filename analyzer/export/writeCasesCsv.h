#pragma once

#include <functional>
#include <string>

class Project;
class RowBitmap;

namespace analyzer {

/// How writeCasesCsv() writes.
struct CsvOptions
{
    /// Texts, names of variables too, that a spreadsheet would take for a formula get an apostrophe in front: those
    /// that begin with =, +, -, @, a tab or a carriage return.
    bool forSpreadsheets = false;
};

/// Called again and again with the part of the work that is done, from 0 to 1, on any thread but one at a time; returns
/// whether to go on.
using ExportProgress = std::function<bool(double)>;

/// Writes the cases of \p rows, a bitmap of all cases of \p project, with all variables to the file \p path (UTF-8).
///
/// CSV as RFC 4180 has it but with line feeds, in UTF-8: a line of names, then a line for each case; the case ID comes
/// first. A field is quoted if it holds a comma, a quote or a line break, or begins or ends with a blank. A missing
/// value is an empty field. Numbers read back to the same bits: whole ones without exponent up to 2^53, others as
/// short as can be, infinities as "inf" and "-inf". Whole numbers beyond 2^53 that need no exponent end in ".0": without
/// it StudyReader takes them for texts.
///
/// The file is written as a whole or, with an error, left as it was; see ReplacementFile.
///
/// May be called on any thread; the project must not change meanwhile. False if \p progress did not want to go on; the
/// file is as it was then.
///
/// \throws ExceptionBase if the file cannot be written.
bool writeCasesCsv(
    const Project& project,
    const RowBitmap& rows,
    const std::string& path,
    CsvOptions options = {},
    const ExportProgress& progress = {});

} // namespace analyzer
