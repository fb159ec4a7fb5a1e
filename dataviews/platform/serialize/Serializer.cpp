#include <dataviews/platform/serialize/Serializer.h>

#include <QDomDocument>
#include <QDomElement>
#include <QString>

#include <algorithm>
#include <utility>

namespace {

int& runningDeserializations()
{
    static int count = 0;
    return count;
}

class DeserializationGuard
{
public:
    DeserializationGuard() { ++runningDeserializations(); }

    DeserializationGuard(const DeserializationGuard&) = delete;
    DeserializationGuard& operator=(const DeserializationGuard&) = delete;

    ~DeserializationGuard() { --runningDeserializations(); }
};

} // namespace

Serializer::Serializer(std::string name)
    : m_name(std::move(name))
{}

Serializer::~Serializer() = default;

void Serializer::serialize(QDomElement& parent) const
{
    QDomElement element = parent.ownerDocument().createElement(QString::fromStdString(m_name));
    parent.appendChild(element);
    serializeSelf(element);
    const std::vector<SubElement> subElements =
        m_subElements; // one may add or replace its siblings
    for (const SubElement& sub : subElements) {
        if (!sub.isReadOnly) {
            sub.serializer->serialize(element);
        }
    }
}

void Serializer::deserialize(const QDomElement& parent)
{
    const DeserializationGuard guard;
    const QDomElement element = parent.firstChildElement(QString::fromStdString(m_name));
    if (element.isNull()) {
        return;
    }
    deserializeSelf(element);
    const std::vector<SubElement> subElements = m_subElements;
    for (const SubElement& sub : subElements) {
        sub.serializer->deserialize(element);
    }
}

std::string Serializer::name() const
{
    return m_name;
}

void Serializer::addSubElement(boost::shared_ptr<SerializerInterface> serializer)
{
    m_subElements.push_back({std::move(serializer), false});
}

void Serializer::replaceSubElement(boost::shared_ptr<SerializerInterface> serializer)
{
    const std::string name = serializer->name();
    const auto place =
        std::find_if(m_subElements.begin(), m_subElements.end(), [&name](const SubElement& sub) {
            return !sub.isReadOnly && sub.serializer->name() == name;
        });
    if (place == m_subElements.end()) {
        addSubElement(std::move(serializer));
    } else {
        place->serializer = std::move(serializer);
    }
}

void Serializer::addDeserializeOnlySubElement(boost::shared_ptr<SerializerInterface> serializer)
{
    m_subElements.push_back({std::move(serializer), true});
}

bool Serializer::isInMiddleOfDeserialization()
{
    return runningDeserializations() > 0;
}

void Serializer::serializeSelf(QDomElement& /*element*/) const {}

void Serializer::deserializeSelf(const QDomElement& /*element*/) {}
