#include <analyzer/study/StudyError.h>
#include <analyzer/study/sentenceText.h>

namespace analyzer {

StudyError::StudyError(const std::string& path, const std::string& reason)
    : ExceptionBase("Cannot read the study \"" + oneLine(path) + "\": " + reason + ".")
{}

StudyError::StudyError(const std::string& path, std::size_t line, const std::string& reason)
    : ExceptionBase(
        "Cannot read the study \"" + oneLine(path) + "\", line " + std::to_string(line) + ": "
        + reason + ".")
    , m_line(line)
{}

} // namespace analyzer
