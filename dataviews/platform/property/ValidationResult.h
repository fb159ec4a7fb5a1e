#pragma once

#include <dataviews/platform/property/PlatformPropertyExport.h>

#include <string>

namespace corvane {

/// A validator's answer: valid, or invalid with the reason.
class DATAVIEWS_PLATFORM_PROPERTY_EXPORT ValidationResult
{
public:
    /// The value is valid.
    ValidationResult() = default;

    /// The value is invalid; \p errorString says why in a sentence.
    explicit ValidationResult(std::string errorString);

    [[nodiscard]] bool isValid() const { return m_valid; }

    /// Empty for a valid value.
    [[nodiscard]] const std::string& errorString() const { return m_errorString; }

private:
    std::string m_errorString;
    bool m_valid = true;
};

} // namespace corvane
