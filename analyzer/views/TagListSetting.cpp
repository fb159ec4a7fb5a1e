#include <analyzer/views/TagListSetting.h>

#include <dataviews/platform/data/Project.h>

#include <utility>

namespace analyzer {

TagListSetting::TagListSetting(
    std::string name,
    std::string label,
    boost::shared_ptr<corvane::PropertyAbstract<std::vector<std::string>>> property)
    : PropertyListSetting<std::string>(
        std::move(name), std::move(label), std::move(property), "tag")
{}

std::vector<std::string> TagListSetting::all() const
{
    std::vector<std::string> tags;
    for (const WeakPtr<TagGroup>& handle : Project::project().tagGroups()) {
        if (const boost::shared_ptr<TagGroup> group = handle.lock()) {
            tags.insert(tags.end(), group->tags().begin(), group->tags().end());
        }
    }
    return tags;
}

std::string TagListSetting::nameOf(const std::string& tag) const
{
    return tag;
}

} // namespace analyzer
