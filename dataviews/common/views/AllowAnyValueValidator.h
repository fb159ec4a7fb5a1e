#pragma once

#include <dataviews/platform/property/ValidatorInterface.h>

namespace corvane {

/// Accepts every value.
template <class T>
class AllowAnyValueValidator : public ValidatorInterface<T>
{
public:
    [[nodiscard]] ValidationResult validate(const T& /*value*/) const override
    {
        return ValidationResult();
    }
};

} // namespace corvane
