#include <dataviews/common/serializers/VariableInfoSerializer.h>
#include <dataviews/common/serializers/variableNamed.h>

#include <QDomDocument>
#include <QDomElement>
#include <QString>

#include <utility>

VariableInfoSerializer::VariableInfoSerializer(
    const std::string& elementName,
    boost::shared_ptr<corvane::PropertyAbstract<WeakPtr<Variable>>> property,
    const std::vector<WeakPtr<Variable>>& candidates)
    : Serializer(elementName)
    , m_property(std::move(property))
    , m_candidates(candidates)
{}

VariableInfoSerializer::~VariableInfoSerializer() = default;

void VariableInfoSerializer::serializeSelf(QDomElement& element) const
{
    if (const boost::shared_ptr<Variable> variable = m_property->value().lock()) {
        const QString name = QString::fromStdString(variable->name());
        element.appendChild(element.ownerDocument().createTextNode(name));
    }
}

void VariableInfoSerializer::deserializeSelf(const QDomElement& element)
{
    const WeakPtr<Variable> variable = variableNamed(element.text(), m_candidates);
    if (!variable.isNull()) {
        m_property->setValue(variable);
    }
}
