#pragma once

#include <analyzer/session/Session.h>

#include <QByteArray>

namespace analyzer {

/// The version of sessions that this program writes. It reads this and earlier ones.
constexpr int sessionVersion = 1;

/// \p session as the content of a session file, XML in UTF-8.
/// \throws SessionError if readSession() would refuse it: it is too large, or a name has a character that XML does not have.
[[nodiscard]] QByteArray writeSession(const Session& session);

/// The opposite. Everything is checked that can be checked without the study and the views.
/// \throws SessionError with one sentence.
[[nodiscard]] Session readSession(const QByteArray& bytes);

} // namespace analyzer
