#pragma once

#include <dataviews/common/serializers/SerializersExport.h>
#include <dataviews/common/views/PropertyAbstract.h>

#include <dataviews/platform/data/WeakPtr.h>
#include <dataviews/platform/serialize/SerializerInterface.h>

#include <boost/shared_ptr.hpp>

#include <memory>
#include <string>
#include <vector>

class TagGroup;

/// Keeps the tag groups that an image view lists, by name, in an element "TagGroupsToShow".
///
/// Groups that are gone are not written. Reading looks the names up in the open project and leaves out those that it
/// has no group for.
class DATAVIEWS_SERIALIZERS_EXPORT TagGroupsToShowSerializer : public SerializerInterface
{
public:
    explicit TagGroupsToShowSerializer(
        boost::shared_ptr<corvane::PropertyAbstract<std::vector<WeakPtr<TagGroup>>>>
            tagGroupsToShow);
    TagGroupsToShowSerializer(const TagGroupsToShowSerializer&) = delete;
    TagGroupsToShowSerializer& operator=(const TagGroupsToShowSerializer&) = delete;
    ~TagGroupsToShowSerializer() override;

    void serialize(QDomElement& parent) const override;

    /// \throws boost::escaped_list_error for a text that is no list, and what setting the property throws.
    void deserialize(const QDomElement& parent) override;

    [[nodiscard]] std::string name() const override;
    void addSubElement(boost::shared_ptr<SerializerInterface> serializer) override;
    void replaceSubElement(boost::shared_ptr<SerializerInterface> serializer) override;
    void addDeserializeOnlySubElement(boost::shared_ptr<SerializerInterface> serializer) override;

private:
    std::unique_ptr<SerializerInterface> m_names;
};
