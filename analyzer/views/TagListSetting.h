#pragma once

#include <analyzer/views/PropertyListSetting.h>

namespace analyzer {

/// Tags of the open study, whatever their groups.
class TagListSetting : public PropertyListSetting<std::string>
{
public:
    TagListSetting(
        std::string name,
        std::string label,
        boost::shared_ptr<corvane::PropertyAbstract<std::vector<std::string>>> property);

protected:
    [[nodiscard]] std::vector<std::string> all() const override;
    [[nodiscard]] std::string nameOf(const std::string& tag) const override;
};

} // namespace analyzer
