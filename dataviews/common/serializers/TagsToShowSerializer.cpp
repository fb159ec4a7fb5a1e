#include <dataviews/common/serializers/TagsToShowSerializer.h>

#include <utility>

namespace {

class AllowedTag
{
public:
    explicit AllowedTag(const std::set<std::string>& knownTags)
        : m_knownTags(knownTags)
    {}

    bool operator()(const std::string& tag) const { return m_knownTags.count(tag) > 0; }

private:
    std::set<std::string> m_knownTags;
};

} // namespace

TagsToShowSerializer::TagsToShowSerializer(
    boost::shared_ptr<corvane::PropertyAbstract<std::vector<std::string>>> tagsToShow,
    const std::set<std::string>& knownTags)
    : VectorSerializer("TagsToShow", std::move(tagsToShow), AllowedTag(knownTags))
{}

TagsToShowSerializer::~TagsToShowSerializer() = default;
