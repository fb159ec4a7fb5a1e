#pragma once

#include <analyzer/views/SettingAbstract.h>

#include <boost/function.hpp>

#include <string>
#include <utility>
#include <vector>

namespace analyzer {

/// A setting whose choices depend on what its view shows, which says when they may have changed.
///
/// The functions must stay callable for as long as the view lives; nobody asks the setting afterwards.
class ImageDiffChoiceSetting : public SettingAbstract<SettingInterface>
{
public:
    ImageDiffChoiceSetting(
        std::string name,
        std::string label,
        boost::function<std::vector<std::string>()> choices,
        boost::function<std::string()> read,
        boost::function<void(const std::string&)> write)
        : SettingAbstract<SettingInterface>(std::move(name), std::move(label))
        , m_choices(std::move(choices))
        , m_read(std::move(read))
        , m_write(std::move(write))
    {}

    [[nodiscard]] Kind kind() const override { return Kind::Choice; }

    [[nodiscard]] std::vector<std::string> choices() const override { return m_choices(); }

    [[nodiscard]] std::string text() const override { return m_read(); }

    void setText(const std::string& text) override { m_write(text); }

    void tellChanged() const { emitChanged(); }

private:
    boost::function<std::vector<std::string>()> m_choices;
    boost::function<std::string()> m_read;
    boost::function<void(const std::string&)> m_write;
};

} // namespace analyzer
