#pragma once

#include <analyzer/views/PropertyListSetting.h>

#include <dataviews/platform/data/TagGroup.h>
#include <dataviews/platform/data/WeakPtr.h>

namespace analyzer {

/// Tag groups of the open study, by name.
class TagGroupListSetting : public PropertyListSetting<WeakPtr<TagGroup>>
{
public:
    TagGroupListSetting(
        std::string name,
        std::string label,
        boost::shared_ptr<corvane::PropertyAbstract<std::vector<WeakPtr<TagGroup>>>> property);

protected:
    [[nodiscard]] std::vector<WeakPtr<TagGroup>> all() const override;
    [[nodiscard]] std::string nameOf(const WeakPtr<TagGroup>& handle) const override;
};

} // namespace analyzer
