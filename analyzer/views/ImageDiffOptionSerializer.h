#pragma once

#include <dataviews/platform/serialize/Serializer.h>

#include <boost/function.hpp>

#include <optional>
#include <string>

namespace analyzer {

/// Keeps a text, or that there is none, as an attribute of an element.
class ImageDiffOptionSerializer : public Serializer
{
public:
    ImageDiffOptionSerializer(
        std::string name,
        boost::function<std::optional<std::string>()> get,
        boost::function<void(const std::optional<std::string>&)> set);

protected:
    void serializeSelf(QDomElement& element) const override;
    void deserializeSelf(const QDomElement& element) override;

private:
    boost::function<std::optional<std::string>()> m_get;
    boost::function<void(const std::optional<std::string>&)> m_set;
};

} // namespace analyzer
