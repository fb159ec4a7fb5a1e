#pragma once

#include <dataviews/platform/property/ValidatorInterface.h>

#include <sstream>

namespace corvane {

/// Accepts the values between two bounds.
template <class T>
class BoundedValueValidator : public ValidatorInterface<T>
{
public:
    /// What a bound means; any other number is Unbounded too.
    enum BoundType
    {
        Inclusive = 0,
        Exclusive = 1,
        Unbounded = 2
    };

    BoundedValueValidator(
        T lower, T upper, int lowerBoundType = Inclusive, int upperBoundType = Inclusive)
        : m_lower(lower)
        , m_upper(upper)
        , m_lowerBoundType(lowerBoundType)
        , m_upperBoundType(upperBoundType)
    {}

    /// The error string names both bounds, whichever side failed.
    [[nodiscard]] ValidationResult validate(const T& value) const override
    {
        if (isAboveLower(value) && isBelowUpper(value)) {
            return ValidationResult();
        }
        std::ostringstream message;
        message << "The value must be greater than "
                << (m_lowerBoundType == Inclusive ? "or equal to " : "") << m_lower
                << " and less than " << (m_upperBoundType == Inclusive ? "or equal to " : "")
                << m_upper << ".";
        return ValidationResult(message.str());
    }

private:
    [[nodiscard]] bool isAboveLower(const T& value) const
    {
        switch (m_lowerBoundType) {
        case Inclusive:
            return value >= m_lower;
        case Exclusive:
            return value > m_lower;
        default:
            return true;
        }
    }

    [[nodiscard]] bool isBelowUpper(const T& value) const
    {
        switch (m_upperBoundType) {
        case Inclusive:
            return value <= m_upper;
        case Exclusive:
            return value < m_upper;
        default:
            return true;
        }
    }

    T m_lower;
    T m_upper;
    int m_lowerBoundType;
    int m_upperBoundType;
};

} // namespace corvane
