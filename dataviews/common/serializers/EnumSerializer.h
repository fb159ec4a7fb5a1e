#pragma once

#include <dataviews/common/serializers/NamedValueTranslator.h>
#include <dataviews/common/views/PropertyAbstract.h>

#include <dataviews/platform/serialize/Serializer.h>

#include <QDomDocument>
#include <QDomElement>
#include <QString>

#include <boost/shared_ptr.hpp>

#include <string>
#include <utility>

/// Keeps a property of an enumeration type as the name of its value, in the text of an element.
template <class E>
class EnumSerializer : public Serializer
{
public:
    EnumSerializer(
        std::string name,
        boost::shared_ptr<corvane::PropertyAbstract<E>> property,
        NamedValueTranslator<E> names)
        : Serializer(std::move(name))
        , m_property(std::move(property))
        , m_names(std::move(names))
    {}

protected:
    /// \throws std::out_of_range if the value has no name.
    void serializeSelf(QDomElement& element) const override
    {
        const QString name = QString::fromStdString(m_names.name(m_property->value()));
        element.appendChild(element.ownerDocument().createTextNode(name));
    }

    /// \throws std::out_of_range if the text is no name of a value, as when it is empty, and what setting the property
    /// throws.
    void deserializeSelf(const QDomElement& element) override
    {
        m_property->setValue(m_names.value(element.text().toStdString()));
    }

private:
    boost::shared_ptr<corvane::PropertyAbstract<E>> m_property;
    NamedValueTranslator<E> m_names;
};
