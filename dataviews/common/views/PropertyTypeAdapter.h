#pragma once

#include <dataviews/common/views/PropertyAbstract.h>

#include <boost/function.hpp>
#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>

#include <utility>

namespace corvane {

/// Presents a property of one type as a property of another, such as an enumeration as a check box.
///
/// Holds no value. Changes made to the adapted property by others are not repeated on the adapter's signal.
template <class From, class To>
class PropertyTypeAdapter : public PropertyAbstract<From>
{
public:
    using ReadConversion = boost::function<From(const To&)>;
    using WriteConversion = boost::function<To(const From&)>;

    /// Accepts what \p adapted accepts after conversion. An empty conversion makes reading, or validating and
    /// writing, throw boost::bad_function_call.
    PropertyTypeAdapter(
        boost::shared_ptr<PropertyAbstract<To>> adapted,
        const ReadConversion& read,
        const WriteConversion& write)
        : PropertyAbstract<From>(boost::make_shared<AdapterValidator>(adapted, write))
        , m_adapted(std::move(adapted))
        , m_read(read)
        , m_write(write)
    {}

    /// Validates by converting and asking the adapted property's validator.
    class AdapterValidator : public ValidatorInterface<From>
    {
    public:
        AdapterValidator(
            boost::shared_ptr<const PropertyAbstract<To>> adapted, const WriteConversion& write)
            : m_adapted(std::move(adapted))
            , m_write(write)
        {}

        [[nodiscard]] ValidationResult validate(const From& value) const override
        {
            return m_adapted->validator()->validate(m_write(value));
        }

    private:
        boost::shared_ptr<const PropertyAbstract<To>> m_adapted;
        WriteConversion m_write;
    };

protected:
    void storeValue(const From& value) override { m_adapted->setValue(m_write(value)); }

    [[nodiscard]] From storedValue() const override { return m_read(m_adapted->value()); }

private:
    boost::shared_ptr<PropertyAbstract<To>> m_adapted;
    ReadConversion m_read;
    WriteConversion m_write;
};

} // namespace corvane
