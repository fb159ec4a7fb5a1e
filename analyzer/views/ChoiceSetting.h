#pragma once

#include <analyzer/views/SettingAbstract.h>

#include <dataviews/common/views/PropertyAbstract.h>

#include <boost/function.hpp>
#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>
#include <boost/signals2/connection.hpp>

#include <string>
#include <utility>
#include <vector>

namespace analyzer {

/// A property whose few values have names, such as an enumeration or a switch.
template <class T>
class ChoiceSetting : public SettingAbstract<SettingInterface>
{
public:
    using NamedValues = std::vector<std::pair<std::string, T>>;
    using Write = boost::function<void(const T&)>;

    /// \p write sets a value in place of the property, where more has to change with it; it must stay callable for as
    /// long as the setting lives.
    ChoiceSetting(
        Kind kind,
        std::string name,
        std::string label,
        boost::shared_ptr<corvane::PropertyAbstract<T>> property,
        NamedValues values,
        Write write = {})
        : SettingAbstract<SettingInterface>(std::move(name), std::move(label))
        , m_kind(kind)
        , m_property(std::move(property))
        , m_values(std::move(values))
        , m_write(std::move(write))
        , m_connection(m_property->valueChanged.connect([this](const T&) { emitChanged(); }))
    {}

    [[nodiscard]] Kind kind() const override { return m_kind; }

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
                if (m_write) {
                    m_write(value);
                } else {
                    m_property->setValue(value);
                }
                return;
            }
            known += (known.empty() ? "" : ", ") + valueName;
        }
        throw ExceptionBase(
            "\"" + text + "\" is not a value of " + name() + "; its values are " + known + ".");
    }

private:
    Kind m_kind;
    boost::shared_ptr<corvane::PropertyAbstract<T>> m_property;
    NamedValues m_values;
    Write m_write;
    boost::signals2::scoped_connection m_connection;
};

/// A switch with the values "on" and "off".
[[nodiscard]] inline boost::shared_ptr<ChoiceSetting<bool>> makeSwitchSetting(
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
