#include <dataviews/platform/property/ValidationResult.h>

#include <utility>

namespace corvane {

ValidationResult::ValidationResult(std::string errorString)
    : m_errorString(std::move(errorString))
    , m_valid(false)
{}

} // namespace corvane
