#pragma once

#include <dataviews/platform/property/ValidatorInterface.h>
#include <dataviews/platform/property/ValueRange_s.h>

namespace corvane {

/// Refuses ranges whose minimum is above their maximum. A range that holds a NaN passes.
template <class T>
class ValueRangeValidator : public ValidatorInterface<ValueRange_s<T>>
{
public:
    [[nodiscard]] ValidationResult validate(const ValueRange_s<T>& range) const override
    {
        if (range.min > range.max) {
            return ValidationResult("Minimum cannot be greater than maximum.");
        }
        return ValidationResult();
    }
};

} // namespace corvane
