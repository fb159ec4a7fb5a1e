#pragma once

#include <dataviews/common/views/PropertyAbstract.h>

#include <utility>

namespace corvane {

/// A property that keeps its value itself.
template <class T>
class Property : public PropertyAbstract<T>
{
public:
    explicit Property(const T& initial)
        : m_value(initial)
    {
        this->Property::validate(initial);
    }

    /// \throws InvalidPropertyValueException if \p validator refuses \p initial.
    Property(const T& initial, boost::shared_ptr<const ValidatorInterface<T>> validator)
        : PropertyAbstract<T>(std::move(validator))
        , m_value(initial)
    {
        this->Property::validate(initial);
    }

protected:
    void storeValue(const T& value) override { m_value = value; }

    [[nodiscard]] T storedValue() const override { return m_value; }

private:
    T m_value;
};

} // namespace corvane
