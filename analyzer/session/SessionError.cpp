#include <analyzer/session/SessionError.h>
#include <analyzer/session/sentence.h>

namespace analyzer {

SessionError::SessionError(const std::string& message)
    : ExceptionBase(sentence(QString::fromStdString(message)).toStdString())
{}

} // namespace analyzer
