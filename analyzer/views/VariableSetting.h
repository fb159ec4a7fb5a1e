#pragma once

#include <analyzer/views/SettingInterface.h>

#include <dataviews/common/views/PropertyAbstract.h>

#include <dataviews/platform/data/Variable.h>
#include <dataviews/platform/data/WeakPtr.h>

#include <boost/function.hpp>
#include <boost/shared_ptr.hpp>
#include <boost/signals2/connection.hpp>

#include <string>
#include <vector>

namespace analyzer {

/// The choice of a variable of the open study, by name.
class VariableSetting : public SettingInterface
{
public:
    /// The choices are the variables of the open study for which \p accepts is true; \p what says in the plural what
    /// these are, for refusals: "numeric variables".
    VariableSetting(
        std::string name,
        std::string label,
        boost::shared_ptr<corvane::PropertyAbstract<WeakPtr<Variable>>> property,
        boost::function<bool(const Variable&)> accepts,
        std::string what);

    [[nodiscard]] Kind kind() const override { return Kind::Choice; }

    [[nodiscard]] std::string name() const override { return m_name; }

    [[nodiscard]] std::string label() const override { return m_label; }

    [[nodiscard]] std::vector<std::string> choices() const override;
    [[nodiscard]] std::string text() const override;
    void setText(const std::string& text) override;

private:
    std::string m_name;
    std::string m_label;
    boost::shared_ptr<corvane::PropertyAbstract<WeakPtr<Variable>>> m_property;
    boost::function<bool(const Variable&)> m_accepts;
    std::string m_what;
    boost::signals2::scoped_connection m_connection;
};

} // namespace analyzer
