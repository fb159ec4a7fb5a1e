#pragma once

#include <dataviews/common/views/AllowAnyValueValidator.h>

#include <dataviews/platform/property/InvalidPropertyValueException.h>
#include <dataviews/platform/property/PropertyItemInterface.h>
#include <dataviews/platform/property/ValidatorInterface.h>
#include <dataviews/platform/signals/Signal.h>

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>

#include <utility>

namespace corvane {

/// A setting: a typed value that is validated, observed, and shared by the views, editors and serializers that
/// work on it.
///
/// Subclasses say where the value lives. Used on the GUI thread; connecting is safe from any.
template <class T>
class PropertyAbstract : public virtual PropertyItemInterface
{
public:
    /// Accepts every value.
    PropertyAbstract()
        : PropertyAbstract(boost::make_shared<AllowAnyValueValidator<T>>())
    {}

    /// \p validator must not be null.
    explicit PropertyAbstract(boost::shared_ptr<const ValidatorInterface<T>> validator)
        : valueChanged([this] { signalValueChangedConnected(); })
        , m_validator(std::move(validator))
    {
        valueChanged.connect([this](const T&) { callBaseClassSignalIfThereAreListeners(); });
    }

    PropertyAbstract(const PropertyAbstract&) = delete;
    PropertyAbstract& operator=(const PropertyAbstract&) = delete;
    ~PropertyAbstract() override = default;

    /// Carries the new value, after it was stored.
    Signal<void(const T&), PropertyAbstract> valueChanged;

    [[nodiscard]] T value() const { return storedValue(); }

    /// Changes the value: validates it, compares it with the present one, and only if it differs stores it and then
    /// tells the listeners. The one way to change a property.
    /// \throws InvalidPropertyValueException if the validator refuses \p value; nothing has changed then. What a
    /// listener throws passes on, with the value stored.
    void setValue(const T& value)
    {
        validate(value);
        if (isEqual(value)) {
            return;
        }
        storeValue(value);
        emitValueChangedSignal(value);
    }

    [[nodiscard]] boost::shared_ptr<const ValidatorInterface<T>> validator() const
    {
        return m_validator;
    }

protected:
    /// Called whenever a slot was connected to valueChanged.
    virtual void signalValueChangedConnected() const {}

    /// Writes \p value to where it lives.
    virtual void storeValue(const T& value) = 0;

    [[nodiscard]] virtual bool isEqual(const T& value) const { return this->value() == value; }

    /// \throws InvalidPropertyValueException with the validator's reason.
    virtual void validate(const T& value) const
    {
        const ValidationResult result = m_validator->validate(value);
        if (!result.isValid()) {
            throw InvalidPropertyValueException(result.errorString());
        }
    }

    [[nodiscard]] virtual T storedValue() const = 0;

    virtual void emitValueChangedSignal(const T& value) const { valueChanged(value); }

private:
    /// So that a property that nobody observes as such pays nothing for the untyped notification.
    void callBaseClassSignalIfThereAreListeners() const
    {
        if (hasPropertyChangedListeners()) {
            emitPropertyChanged();
        }
    }

    boost::shared_ptr<const ValidatorInterface<T>> m_validator;
};

} // namespace corvane
