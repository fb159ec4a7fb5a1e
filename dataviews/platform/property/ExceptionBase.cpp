#include <dataviews/platform/property/ExceptionBase.h>

#include <utility>

ExceptionBase::ExceptionBase(std::string message)
    : m_message(std::move(message))
{}

ExceptionBase::~ExceptionBase() = default;

const char* ExceptionBase::what() const noexcept
{
    return m_message.c_str();
}
