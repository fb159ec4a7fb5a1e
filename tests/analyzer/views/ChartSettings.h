#pragma once

#include <analyzer/views/AnalyzerViewInterface.h>
#include <analyzer/views/SettingInterface.h>

#include <stdexcept>
#include <string>

/// The setting of \p view that is called \p name.
inline analyzer::SettingInterface& settingOf(
    const analyzer::AnalyzerViewInterface& view, const std::string& name)
{
    for (const auto& setting : view.settings()) {
        if (setting->name() == name) {
            return *setting;
        }
    }
    throw std::logic_error("there is no setting " + name);
}

/// What \p view says that it leaves out: "2 without Drag, 1 filtered".
inline std::string leftOutText(const analyzer::AnalyzerViewInterface& view)
{
    std::string text;
    for (const analyzer::LeftOutCases& cases : view.leftOut()) {
        text += (text.empty() ? "" : ", ") + std::to_string(cases.count) + " " + cases.reason;
    }
    return text;
}

/// Sets the setting \p name of \p view to \p text; the refusal, or an empty text.
inline std::string refusalOf(
    const analyzer::AnalyzerViewInterface& view, const std::string& name, const std::string& text)
{
    try {
        settingOf(view, name).setText(text);
    } catch (const std::exception& error) {
        return error.what();
    }
    return {};
}
