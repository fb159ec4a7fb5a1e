#include <dataviews/platform/property/InvalidPropertyValueException.h>

#include <utility>

namespace corvane {

InvalidPropertyValueException::InvalidPropertyValueException(std::string message)
    : ExceptionBase(std::move(message))
{}

InvalidPropertyValueException::~InvalidPropertyValueException() = default;

} // namespace corvane
