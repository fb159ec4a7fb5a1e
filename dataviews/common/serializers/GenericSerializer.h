#pragma once

#include <dataviews/common/serializers/SerializersExport.h>

#include <dataviews/platform/serialize/Serializer.h>

#include <QDomDocument>
#include <QDomElement>
#include <QString>

#include <boost/function.hpp>
#include <boost/lexical_cast.hpp>

#include <string>
#include <type_traits>
#include <typeinfo>
#include <utility>
#include <vector>

/// Keeps a value in the text of an element, or in attributes of it.
///
/// Numbers are written in the C locale and exactly, booleans as 1 and 0.
template <class T>
class GenericSerializer : public Serializer
{
public:
    using Getter = boost::function<T()>;
    using Setter = boost::function<void(const T&)>;

    /// Without \p attributeNames the value is the element's text; with them it is that of each of these attributes.
    GenericSerializer(
        std::string name,
        Getter getter,
        Setter setter,
        std::vector<std::string> attributeNames = {})
        : Serializer(std::move(name))
        , m_getter(std::move(getter))
        , m_setter(std::move(setter))
        , m_attributeNames(std::move(attributeNames))
    {}

protected:
    void serializeSelf(QDomElement& element) const override
    {
        const QString text = QString::fromStdString(toString(m_getter()));
        for (const std::string& attribute : m_attributeNames) {
            element.setAttribute(QString::fromStdString(attribute), text);
        }
        if (m_attributeNames.empty()) {
            element.appendChild(element.ownerDocument().createTextNode(text));
        }
    }

    /// Sets the value that is there, or again the present one where nothing is written.
    /// \throws boost::bad_lexical_cast for a text that is no value, and what the setter throws.
    void deserializeSelf(const QDomElement& element) override
    {
        T value = m_getter();
        for (const std::string& attribute : m_attributeNames) {
            read(element.attribute(QString::fromStdString(attribute)), value);
        }
        if (m_attributeNames.empty()) {
            read(element.text(), value);
        }
        m_setter(value);
    }

    [[nodiscard]] virtual std::string toString(const T& value) const
    {
        return boost::lexical_cast<std::string>(value);
    }

    /// \throws boost::bad_lexical_cast for a text that is no value.
    [[nodiscard]] virtual T fromString(const std::string& text) const
    {
        if constexpr (std::is_same_v<T, bool>) {
            // lexical_cast takes "+1" and "00" as well.
            if (text != "0" && text != "1") {
                throw boost::bad_lexical_cast(typeid(std::string), typeid(bool));
            }
        }
        return boost::lexical_cast<T>(text);
    }

private:
    void read(const QString& text, T& value) const
    {
        if (!text.isEmpty()) {
            value = fromString(text.toStdString());
        }
    }

    Getter m_getter;
    Setter m_setter;
    std::vector<std::string> m_attributeNames;
};

extern template class DATAVIEWS_SERIALIZERS_EXPORT GenericSerializer<bool>;
extern template class DATAVIEWS_SERIALIZERS_EXPORT GenericSerializer<short>;
