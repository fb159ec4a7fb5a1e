#include <dataviews/common/serializers/TagGroupsToShowSerializer.h>
#include <dataviews/common/serializers/VectorSerializer.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/data/TagGroup.h>

#include <boost/function.hpp>
#include <boost/make_shared.hpp>

#include <utility>

namespace {

using Names = std::vector<std::string>;
using Groups = std::vector<WeakPtr<TagGroup>>;
using NameSerializer = VectorSerializer<std::string, boost::function<bool(const std::string&)>>;

bool isTagGroup(const std::string& name)
{
    return !Project::project().tagGroup(name).expired();
}

Groups groupsNamed(const Names& names)
{
    Groups groups;
    for (const std::string& name : names) {
        if (isTagGroup(name)) {
            groups.push_back(Project::project().tagGroup(name));
        }
    }
    return groups;
}

/// Presents a list of tag groups as the list of their names.
class TagGroupsToShowProperty : public corvane::PropertyAbstract<Names>
{
public:
    explicit TagGroupsToShowProperty(
        boost::shared_ptr<corvane::PropertyAbstract<Groups>> tagGroupsToShow)
        : m_tagGroupsToShow(std::move(tagGroupsToShow))
    {}

protected:
    void storeValue(const Names& names) override
    {
        m_tagGroupsToShow->setValue(groupsNamed(names));
    }

    /// Not by the names, which say nothing of groups that are gone.
    [[nodiscard]] bool isEqual(const Names& names) const override
    {
        return groupsNamed(names) == m_tagGroupsToShow->value();
    }

    [[nodiscard]] Names storedValue() const override
    {
        Names names;
        for (const WeakPtr<TagGroup>& handle : m_tagGroupsToShow->value()) {
            if (const boost::shared_ptr<TagGroup> group = handle.lock()) {
                names.push_back(group->name());
            }
        }
        return names;
    }

private:
    boost::shared_ptr<corvane::PropertyAbstract<Groups>> m_tagGroupsToShow;
};

} // namespace

TagGroupsToShowSerializer::TagGroupsToShowSerializer(
    boost::shared_ptr<corvane::PropertyAbstract<std::vector<WeakPtr<TagGroup>>>> tagGroupsToShow)
    : m_names(std::make_unique<NameSerializer>(
        "TagGroupsToShow",
        boost::make_shared<TagGroupsToShowProperty>(std::move(tagGroupsToShow)),
        isTagGroup))
{}

TagGroupsToShowSerializer::~TagGroupsToShowSerializer() = default;

void TagGroupsToShowSerializer::serialize(QDomElement& parent) const
{
    m_names->serialize(parent);
}

void TagGroupsToShowSerializer::deserialize(const QDomElement& parent)
{
    m_names->deserialize(parent);
}

std::string TagGroupsToShowSerializer::name() const
{
    return m_names->name();
}

void TagGroupsToShowSerializer::addSubElement(boost::shared_ptr<SerializerInterface> serializer)
{
    m_names->addSubElement(std::move(serializer));
}

void TagGroupsToShowSerializer::replaceSubElement(boost::shared_ptr<SerializerInterface> serializer)
{
    m_names->replaceSubElement(std::move(serializer));
}

void TagGroupsToShowSerializer::addDeserializeOnlySubElement(
    boost::shared_ptr<SerializerInterface> serializer)
{
    m_names->addDeserializeOnlySubElement(std::move(serializer));
}
