#pragma once

#include <analyzer/views/SettingAbstract.h>

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
class VariableSetting : public SettingAbstract<SettingInterface>
{
public:
    using Write = boost::function<void(const WeakPtr<Variable>&)>;

    /// The choices are the variables of the open study for which \p accepts is true; \p what says in the plural what
    /// these are, for refusals: "numeric variables".
    /// \p nothing, if it is not empty, is a further choice for a handle of nothing: "(all)". Where a variable has that
    /// name, parentheses are put around it.
    /// \p write sets a variable in place of the property, where more has to change with it; it must stay callable for
    /// as long as the setting lives.
    VariableSetting(
        std::string name,
        std::string label,
        boost::shared_ptr<corvane::PropertyAbstract<WeakPtr<Variable>>> property,
        boost::function<bool(const Variable&)> accepts,
        std::string what,
        std::string nothing = {},
        Write write = {});

    [[nodiscard]] Kind kind() const override { return Kind::Choice; }

    [[nodiscard]] std::vector<std::string> choices() const override;
    [[nodiscard]] std::string text() const override;
    void setText(const std::string& text) override;

private:
    /// Empty if nothing cannot be chosen.
    [[nodiscard]] std::string nothingText() const;
    void write(const WeakPtr<Variable>& variable);

    boost::shared_ptr<corvane::PropertyAbstract<WeakPtr<Variable>>> m_property;
    boost::function<bool(const Variable&)> m_accepts;
    std::string m_what;
    std::string m_nothing;
    Write m_write;
    boost::signals2::scoped_connection m_connection;
};

} // namespace analyzer
