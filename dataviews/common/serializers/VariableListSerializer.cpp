#include <dataviews/common/serializers/VariableListSerializer.h>
#include <dataviews/common/serializers/variableNamed.h>

#include <QDomDocument>
#include <QDomElement>
#include <QString>

#include <utility>

namespace {

QString childName()
{
    return QStringLiteral("Variable");
}

QString nameAttribute()
{
    return QStringLiteral("name");
}

} // namespace

VariableListSerializer::VariableListSerializer(
    const std::string& elementName,
    boost::shared_ptr<corvane::PropertyAbstract<std::vector<WeakPtr<Variable>>>> property,
    const std::vector<WeakPtr<Variable>>& candidates)
    : Serializer(elementName)
    , m_property(std::move(property))
    , m_candidates(candidates)
{}

VariableListSerializer::~VariableListSerializer() = default;

void VariableListSerializer::serializeSelf(QDomElement& element) const
{
    for (const WeakPtr<Variable>& handle : m_property->value()) {
        if (const boost::shared_ptr<Variable> variable = handle.lock()) {
            QDomElement child = element.ownerDocument().createElement(childName());
            child.setAttribute(nameAttribute(), QString::fromStdString(variable->name()));
            element.appendChild(child);
        }
    }
}

void VariableListSerializer::deserializeSelf(const QDomElement& element)
{
    std::vector<WeakPtr<Variable>> variables;
    for (QDomElement child = element.firstChildElement(childName()); !child.isNull();
         child = child.nextSiblingElement(childName())) {
        // A child without the attribute has the empty name, which no variable has.
        const WeakPtr<Variable> variable =
            variableNamed(child.attribute(nameAttribute()), m_candidates);
        if (!variable.isNull()) {
            variables.push_back(variable);
        }
    }
    m_property->setValue(variables);
}
