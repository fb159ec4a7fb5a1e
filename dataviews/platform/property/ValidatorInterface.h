#pragma once

#include <dataviews/platform/property/ValidationResult.h>

namespace corvane {

/// Decides whether a property may take a value. Shared between properties, hence without a state of its own
/// that validating would change.
template <class T>
class ValidatorInterface
{
public:
    ValidatorInterface() = default;
    ValidatorInterface(const ValidatorInterface&) = default;
    ValidatorInterface& operator=(const ValidatorInterface&) = default;
    virtual ~ValidatorInterface() = default;

    [[nodiscard]] virtual ValidationResult validate(const T& value) const = 0;
};

} // namespace corvane
