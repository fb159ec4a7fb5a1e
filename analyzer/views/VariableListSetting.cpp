#include <analyzer/views/VariableListSetting.h>

#include <dataviews/platform/data/Project.h>

#include <utility>

namespace analyzer {

VariableListSetting::VariableListSetting(
    std::string name,
    std::string label,
    boost::shared_ptr<corvane::PropertyAbstract<std::vector<WeakPtr<Variable>>>> property)
    : PropertyListSetting<WeakPtr<Variable>>(
        std::move(name), std::move(label), std::move(property), "variable")
{}

std::vector<WeakPtr<Variable>> VariableListSetting::all() const
{
    std::vector<WeakPtr<Variable>> handles = {Project::project().caseIDVariable()};
    const std::vector<WeakPtr<Variable>>& variables = Project::project().variables();
    handles.insert(handles.end(), variables.begin(), variables.end());
    return handles;
}

std::string VariableListSetting::nameOf(const WeakPtr<Variable>& handle) const
{
    const boost::shared_ptr<Variable> variable = handle.lock();
    return variable ? variable->name() : std::string();
}

} // namespace analyzer
