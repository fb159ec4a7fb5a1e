#pragma once

#include <analyzer/views/ListSettingInterface.h>
#include <analyzer/views/SettingAbstract.h>

#include <string>

namespace analyzer {

/// The text form of a list of names.
class ListSettingAbstract : public SettingAbstract<ListSettingInterface>
{
public:
    using SettingAbstract<ListSettingInterface>::SettingAbstract;

    [[nodiscard]] std::string text() const override;
    void setText(const std::string& text) override;
};

} // namespace analyzer
