#pragma once

#include <dataviews/platform/property/ExceptionBase.h>

namespace analyzer {

/// A session that cannot be read or written; the message is one sentence for people, UTF-8.
class SessionError : public ExceptionBase
{
public:
    using ExceptionBase::ExceptionBase;
};

} // namespace analyzer
