#pragma once

#include <dataviews/platform/property/ExceptionBase.h>

#include <string>

namespace analyzer {

/// A session that cannot be read or written; the message is one sentence for people, UTF-8.
class SessionError : public ExceptionBase
{
public:
    /// Makes a sentence() of \p message.
    explicit SessionError(const std::string& message);
};

} // namespace analyzer
