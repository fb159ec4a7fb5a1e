#pragma once

#include <dataviews/platform/property/PlatformPropertyExport.h>

#include <exception>
#include <string>

/// Base of the errors that this library throws; the message is a sentence that a person can act on.
class DATAVIEWS_PLATFORM_PROPERTY_EXPORT ExceptionBase : public std::exception
{
public:
    /// \p message is UTF-8.
    explicit ExceptionBase(std::string message);
    ExceptionBase(const ExceptionBase&) = default;
    ExceptionBase& operator=(const ExceptionBase&) = default;
    ~ExceptionBase() override;

    [[nodiscard]] const char* what() const noexcept override;

private:
    std::string m_message;
};
