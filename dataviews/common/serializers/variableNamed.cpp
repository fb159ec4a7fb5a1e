#include <dataviews/common/serializers/variableNamed.h>

#include <algorithm>
#include <string>

WeakPtr<Variable> variableNamed(
    const QString& name, const std::vector<WeakPtr<Variable>>& candidates)
{
    const auto place = std::find_if(
        candidates.begin(),
        candidates.end(),
        [wanted = name.toStdString()](const WeakPtr<Variable>& candidate) {
            const boost::shared_ptr<Variable> variable = candidate.lock();
            return variable && variable->name() == wanted;
        });
    return place == candidates.end() ? WeakPtr<Variable>() : *place;
}
