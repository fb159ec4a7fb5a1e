#include <analyzer/views/ImageDiffOptionSerializer.h>

#include <QDomElement>

#include <utility>

namespace analyzer {

namespace {

QString valueAttribute()
{
    return QStringLiteral("Value");
}

} // namespace

ImageDiffOptionSerializer::ImageDiffOptionSerializer(
    std::string name,
    boost::function<std::optional<std::string>()> get,
    boost::function<void(const std::optional<std::string>&)> set)
    : Serializer(std::move(name))
    , m_get(std::move(get))
    , m_set(std::move(set))
{}

void ImageDiffOptionSerializer::serializeSelf(QDomElement& element) const
{
    if (const std::optional<std::string> value = m_get()) {
        element.setAttribute(valueAttribute(), QString::fromStdString(*value));
    }
}

void ImageDiffOptionSerializer::deserializeSelf(const QDomElement& element)
{
    m_set(
        element.hasAttribute(valueAttribute())
            ? std::optional<std::string>(element.attribute(valueAttribute()).toStdString())
            : std::nullopt);
}

} // namespace analyzer
