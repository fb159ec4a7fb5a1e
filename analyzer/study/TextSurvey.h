#pragma once

#include <cstddef>

namespace analyzer {

class ReadProgress;
class TableFile;

/// What a first look over all bytes of a table tells: whether it is text, in which encoding, and where it lies.
struct TextSurvey
{
    std::size_t begin = 0; ///< behind a byte-order mark
    std::size_t end = 0; ///< before a closing Ctrl-Z, as old editors leave one
    bool isLatin1 = false; ///< not UTF-8, hence taken for Latin-1
    std::size_t firstForeignLine = 0; ///< where it is not UTF-8, counted from 1
    bool endedByCtrlZ = false;
};

/// Supposes that the whole of \p file is text in UTF-8: what its first and last bytes tell.
/// \throws StudyError if it is empty or begins as UTF-16 text does.
[[nodiscard]] TextSurvey supposeText(TableFile& file);

/// Looks over \p file, advancing \p progress by its size.
/// \throws StudyError if the file is empty, or no text: it holds NUL bytes, or is neither UTF-8 nor free of control
/// characters.
[[nodiscard]] TextSurvey surveyText(TableFile& file, ReadProgress& progress);

} // namespace analyzer
