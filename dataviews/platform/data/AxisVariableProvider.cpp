#include <dataviews/platform/data/AxisVariableProvider.h>

#include <algorithm>
#include <utility>

namespace {

bool hasFewValues(const Variable& variable)
{
    constexpr std::size_t fewest = 2;
    const std::size_t count = variable.distinctValueCount();
    return count >= fewest && count <= Variable::maxDistinctValues;
}

} // namespace

AxisVariableProvider::AxisVariableProvider(std::vector<WeakPtr<Variable>> variables)
    : m_remaining(std::move(variables))
{}

WeakPtr<Variable> AxisVariableProvider::nextVariable(Variable::Nature nature)
{
    const auto take = [this](auto accepts) {
        const auto place = std::find_if(
            m_remaining.begin(), m_remaining.end(), [&](const WeakPtr<Variable>& handle) {
                const boost::shared_ptr<Variable> variable = handle.lock();
                return variable && accepts(*variable);
            });
        if (place == m_remaining.end()) {
            return WeakPtr<Variable>();
        }
        WeakPtr<Variable> taken = *place;
        m_remaining.erase(place);
        return taken;
    };

    WeakPtr<Variable> next =
        take([nature](const Variable& v) { return v.nature() == nature && hasFewValues(v); });
    if (next.isNull()) {
        next = take([nature](const Variable& v) { return v.nature() == nature; });
    }
    if (next.isNull()) {
        next = take([](const Variable& v) {
            return v.nature() != Variable::Identifier && hasFewValues(v);
        });
    }
    return next;
}
