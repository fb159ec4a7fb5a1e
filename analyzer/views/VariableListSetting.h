#pragma once

#include <analyzer/views/PropertyListSetting.h>

#include <dataviews/platform/data/Variable.h>
#include <dataviews/platform/data/WeakPtr.h>

namespace analyzer {

/// Variables of the open study, by name; the case ID is the first choice.
class VariableListSetting : public PropertyListSetting<WeakPtr<Variable>>
{
public:
    VariableListSetting(
        std::string name,
        std::string label,
        boost::shared_ptr<corvane::PropertyAbstract<std::vector<WeakPtr<Variable>>>> property);

protected:
    [[nodiscard]] std::vector<WeakPtr<Variable>> all() const override;
    [[nodiscard]] std::string nameOf(const WeakPtr<Variable>& handle) const override;
};

} // namespace analyzer
