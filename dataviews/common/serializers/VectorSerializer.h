#pragma once

#include <dataviews/common/serializers/SerializersExport.h>
#include <dataviews/common/views/PropertyAbstract.h>

#include <dataviews/platform/serialize/Serializer.h>
#include <dataviews/platform/serialize/stringValue.h>

#include <QDomDocument>
#include <QDomElement>
#include <QString>

#include <boost/function.hpp>
#include <boost/shared_ptr.hpp>
#include <boost/token_functions.hpp>
#include <boost/tokenizer.hpp>

#include <algorithm>
#include <functional>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

/// Keeps a property that is a list of texts in the text of an element, as stringValue() writes it.
///
/// On reading, \p Validator says of each text whether it may stay; one that may not is left out in silence.
template <class T, class Validator>
class VectorSerializer : public Serializer
{
public:
    using Setter = boost::function<void(const std::vector<T>&)>;

    /// With a \p setter, reading calls it instead of setting the property.
    VectorSerializer(
        std::string name,
        boost::shared_ptr<corvane::PropertyAbstract<std::vector<T>>> property,
        Validator isAccepted,
        Setter setter = Setter())
        : Serializer(std::move(name))
        , m_property(std::move(property))
        , m_setter(std::move(setter))
        , m_separator("\\", ",", "\"")
        , m_isAccepted(std::move(isAccepted))
    {}

protected:
    void serializeSelf(QDomElement& element) const override
    {
        const QString text = QString::fromStdString(stringValue(m_property->value()));
        element.appendChild(element.ownerDocument().createTextNode(text));
    }

    /// No text is the empty list.
    /// \throws boost::escaped_list_error for a text that is no list, and what setting the property throws.
    void deserializeSelf(const QDomElement& element) override
    {
        const std::string text = element.text().toStdString();
        const boost::tokenizer<boost::escaped_list_separator<char>> fields(text, m_separator);
        std::vector<T> accepted;
        std::copy_if(
            fields.begin(), fields.end(), std::back_inserter(accepted), std::cref(m_isAccepted));
        if (m_setter) {
            m_setter(accepted);
        } else {
            m_property->setValue(accepted);
        }
    }

private:
    boost::shared_ptr<corvane::PropertyAbstract<std::vector<T>>> m_property;
    Setter m_setter;
    boost::escaped_list_separator<char> m_separator;
    Validator m_isAccepted;
};

extern template class DATAVIEWS_SERIALIZERS_EXPORT
    VectorSerializer<std::string, boost::function<bool(const std::string&)>>;
