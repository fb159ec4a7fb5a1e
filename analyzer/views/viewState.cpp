#include <analyzer/views/viewState.h>

#include <dataviews/common/serializers/VariableInfoSerializer.h>

#include <dataviews/platform/data/Project.h>

#include <QDomElement>

namespace analyzer::viewState {

namespace {

/// Tells no variable, which is a choice like any other, from one that is not to be found.
class VariableOrNoneSerializer : public VariableInfoSerializer
{
public:
    VariableOrNoneSerializer(
        const std::string& elementName, const PropertyPtr<WeakPtr<Variable>>& property)
        : VariableInfoSerializer(elementName, property, variableCandidates())
        , m_property(property)
    {}

protected:
    void serializeSelf(QDomElement& element) const override
    {
        VariableInfoSerializer::serializeSelf(element);
        if (m_property->value().expired()) {
            element.setAttribute(noneAttribute(), 1);
        }
    }

    void deserializeSelf(const QDomElement& element) override
    {
        if (element.hasAttribute(noneAttribute())) {
            m_property->setValue(WeakPtr<Variable>());
        } else {
            VariableInfoSerializer::deserializeSelf(element);
        }
    }

private:
    static QString noneAttribute() { return QStringLiteral("None"); }

    PropertyPtr<WeakPtr<Variable>> m_property;
};

} // namespace

void keepVariable(
    SerializerInterface& parent,
    const std::string& elementName,
    const PropertyPtr<WeakPtr<Variable>>& property)
{
    parent.addSubElement(boost::make_shared<VariableOrNoneSerializer>(elementName, property));
}

void keepPalette(SerializerInterface& parent, const PropertyPtr<ColorPalette>& property)
{
    keep<ColorPalette>(
        parent,
        "Palette",
        property,
        {{"Viridis", ColorPalette::Viridis},
         {"Cividis", ColorPalette::Cividis},
         {"CoolWarm", ColorPalette::CoolWarm}});
}

std::vector<WeakPtr<Variable>> variableCandidates()
{
    const Project& project = Project::project();
    std::vector<WeakPtr<Variable>> candidates = {project.caseIDVariable()};
    candidates.insert(candidates.end(), project.variables().begin(), project.variables().end());
    return candidates;
}

} // namespace analyzer::viewState
