#pragma once

#include <dataviews/common/serializers/SerializersExport.h>
#include <dataviews/common/views/PropertyAbstract.h>

#include <dataviews/platform/property/ValueRange_s.h>
#include <dataviews/platform/serialize/Serializer.h>

#include <QDomElement>
#include <QString>

#include <boost/lexical_cast.hpp>
#include <boost/shared_ptr.hpp>

#include <string>
#include <utility>

/// Keeps a property that is a range of numbers in the attributes "Min" and "Max" of an element, exactly.
template <class T>
class ValueRangeSerializer : public Serializer
{
public:
    ValueRangeSerializer(
        std::string name, boost::shared_ptr<corvane::PropertyAbstract<ValueRange_s<T>>> property)
        : Serializer(std::move(name))
        , m_property(std::move(property))
    {}

protected:
    void serializeSelf(QDomElement& element) const override
    {
        const ValueRange_s<T> range = m_property->value();
        element.setAttribute(minAttribute(), text(range.min));
        element.setAttribute(maxAttribute(), text(range.max));
    }

    /// An attribute that is missing leaves its end as it is; one that is no number counts as 0. Throws what setting the
    /// property throws.
    void deserializeSelf(const QDomElement& element) override
    {
        ValueRange_s<T> range = m_property->value();
        if (element.hasAttribute(minAttribute())) {
            range.min = number(element.attribute(minAttribute()));
        }
        if (element.hasAttribute(maxAttribute())) {
            range.max = number(element.attribute(maxAttribute()));
        }
        m_property->setValue(range);
    }

private:
    static QString minAttribute() { return QStringLiteral("Min"); }

    static QString maxAttribute() { return QStringLiteral("Max"); }

    static QString text(T value)
    {
        return QString::fromStdString(boost::lexical_cast<std::string>(value));
    }

    /// Unlike lexical_cast it bears blanks and texts that people wrote by hand.
    static T number(const QString& text) { return static_cast<T>(text.toDouble()); }

    boost::shared_ptr<corvane::PropertyAbstract<ValueRange_s<T>>> m_property;
};

extern template class DATAVIEWS_SERIALIZERS_EXPORT ValueRangeSerializer<double>;
