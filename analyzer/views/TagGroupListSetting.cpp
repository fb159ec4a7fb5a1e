#include <analyzer/views/TagGroupListSetting.h>

#include <dataviews/platform/data/Project.h>

#include <utility>

namespace analyzer {

TagGroupListSetting::TagGroupListSetting(
    std::string name,
    std::string label,
    boost::shared_ptr<corvane::PropertyAbstract<std::vector<WeakPtr<TagGroup>>>> property)
    : PropertyListSetting<WeakPtr<TagGroup>>(
        std::move(name), std::move(label), std::move(property), "tag group")
{}

std::vector<WeakPtr<TagGroup>> TagGroupListSetting::all() const
{
    return Project::project().tagGroups();
}

std::string TagGroupListSetting::nameOf(const WeakPtr<TagGroup>& handle) const
{
    const boost::shared_ptr<TagGroup> group = handle.lock();
    return group ? group->name() : std::string();
}

} // namespace analyzer
