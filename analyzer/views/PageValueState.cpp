#include <analyzer/views/PageValueState.h>
#include <analyzer/views/stateText.h>

#include <QDomElement>

#include <utility>

namespace analyzer {

PageValueState::PageValueState(
    const std::string& elementName, boost::shared_ptr<corvane::PropertyAbstract<Variant>> property)
    : Serializer(elementName)
    , m_property(std::move(property))
{}

PageValueState::~PageValueState() = default;

void PageValueState::serializeSelf(QDomElement& element) const
{
    setVariantAttributes(element, m_property->value());
}

void PageValueState::deserializeSelf(const QDomElement& element)
{
    m_property->setValue(variantAttributes(element));
}

} // namespace analyzer
