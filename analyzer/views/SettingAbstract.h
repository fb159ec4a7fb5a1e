#pragma once

#include <analyzer/views/SettingInterface.h>

#include <dataviews/common/views/PropertyAbstract.h>

#include <dataviews/platform/signals/SignalConnectionCollection.h>

#include <boost/function.hpp>
#include <boost/shared_ptr.hpp>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace analyzer {

/// What every setting is made of: its names, its section, and when it has an effect. \p Interface is the interface of its kind.
template <class Interface>
class SettingAbstract : public Interface
{
public:
    SettingAbstract(std::string name, std::string label)
        : m_name(std::move(name))
        , m_label(std::move(label))
    {}

    [[nodiscard]] std::string name() const override { return m_name; }

    [[nodiscard]] std::string label() const override { return m_label; }

    [[nodiscard]] std::string section() const override { return m_section; }

    /// Before the setting is shown; \p section may be empty.
    void setSection(std::string section) { m_section = std::move(section); }

    /// Whether the conditions of enableWhile() are met.
    [[nodiscard]] bool isEnabled() const override
    {
        return std::all_of(m_conditions.begin(), m_conditions.end(), [](const auto& condition) {
            return condition();
        });
    }

    /// The setting has an effect only while \p condition is true of the value of \p property, and of every other such
    /// condition.
    template <class T, class Condition>
    void enableWhile(
        const boost::shared_ptr<corvane::PropertyAbstract<T>>& property, Condition condition)
    {
        m_conditions.push_back([property, condition] { return condition(property->value()); });
        m_conditionConnections.add(
            property->valueChanged.connect([this](const T&) { this->emitChanged(); }));
    }

private:
    std::string m_name;
    std::string m_label;
    std::string m_section;
    std::vector<boost::function<bool()>> m_conditions;
    SignalConnectionCollection m_conditionConnections;
};

} // namespace analyzer
