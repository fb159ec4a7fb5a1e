#pragma once

#include <dataviews/platform/property/ExceptionBase.h>

namespace analyzer {

/// Leaves the reader when its progress was cancelled; nobody needs to be told.
class ReadCancelled : public ExceptionBase
{
public:
    ReadCancelled();
};

} // namespace analyzer
