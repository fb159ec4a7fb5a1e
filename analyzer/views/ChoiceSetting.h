#pragma once

#include <analyzer/views/SettingInterface.h>

#include <dataviews/common/views/PropertyAbstract.h>

#include <boost/shared_ptr.hpp>
#include <boost/signals2/connection.hpp>

#include <string>
#include <utility>
#include <vector>

namespace analyzer {

/// A property whose few values have names, such as an enumeration or a switch.
template <class T>
class ChoiceSetting : public SettingInterface
{
public:
    using NamedValues = std::vector<std::pair<std::string, T>>;

    ChoiceSetting(
        Kind kind,
        std::string name,
        std::string label,
        boost::shared_ptr<corvane::PropertyAbstract<T>> property,
        NamedValues values)
        : m_kind(kind)
        , m_name(std::move(name))
        , m_label(std::move(label))
        , m_property(std::move(property))
        , m_values(std::move(values))
        , m_connection(m_property->valueChanged.connect([this](const T&) { emitChanged(); }))
    {}

    [[nodiscard]] Kind kind() const override { return m_kind; }

    [[nodiscard]] std::string name() const override { return m_name; }

    [[nodiscard]] std::string label() const override { return m_label; }

    [[nodiscard]] std::vector<std::string> choices() const override
    {
        std::vector<std::string> names;
        for (const auto& [valueName, value] : m_values) {
            names.push_back(valueName);
        }
        return names;
    }

    [[nodiscard]] std::string text() const override
    {
        const T current = m_property->value();
        for (const auto& [valueName, value] : m_values) {
            if (value == current) {
                return valueName;
            }
        }
        return {};
    }

    void setText(const std::string& text) override
    {
        std::string known;
        for (const auto& [valueName, value] : m_values) {
            if (valueName == text) {
                m_property->setValue(value);
                return;
            }
            known += (known.empty() ? "" : ", ") + valueName;
        }
        throw ExceptionBase(
            "\"" + text + "\" is not a value of " + m_name + "; its values are " + known + ".");
    }

private:
    Kind m_kind;
    std::string m_name;
    std::string m_label;
    boost::shared_ptr<corvane::PropertyAbstract<T>> m_property;
    NamedValues m_values;
    boost::signals2::scoped_connection m_connection;
};

/// A switch with the values "on" and "off".
[[nodiscard]] inline boost::shared_ptr<SettingInterface> makeSwitchSetting(
    std::string name,
    std::string label,
    boost::shared_ptr<corvane::PropertyAbstract<bool>> property)
{
    return boost::make_shared<ChoiceSetting<bool>>(
        SettingInterface::Kind::Switch,
        std::move(name),
        std::move(label),
        std::move(property),
        ChoiceSetting<bool>::NamedValues{{"on", true}, {"off", false}});
}

} // namespace analyzer
