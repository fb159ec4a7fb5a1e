#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/pipeline/boundVariable.h>

boost::shared_ptr<Variable> boundVariable(const Project& project, const WeakPtr<Variable>& handle)
{
    boost::shared_ptr<Variable> variable = handle.lock();
    if (variable && project.variable(variable->name()) != handle) {
        variable.reset();
    }
    return variable;
}
