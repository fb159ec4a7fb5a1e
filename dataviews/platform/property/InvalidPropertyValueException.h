#pragma once

#include <dataviews/platform/property/ExceptionBase.h>

namespace corvane {

/// A property refused a value; the message is its validator's.
class DATAVIEWS_PLATFORM_PROPERTY_EXPORT InvalidPropertyValueException : public ExceptionBase
{
public:
    explicit InvalidPropertyValueException(std::string message);
    InvalidPropertyValueException(const InvalidPropertyValueException&) = default;
    InvalidPropertyValueException& operator=(const InvalidPropertyValueException&) = default;
    ~InvalidPropertyValueException() override;
};

} // namespace corvane
