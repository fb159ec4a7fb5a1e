#include <dataviews/platform/pipeline/FilterAbstract.h>
#include <dataviews/platform/property/ExceptionBase.h>

#include <utility>

FilterAbstract::FilterAbstract(const WeakPtr<Variable>& variable, bool inverted)
    : m_variable(variable)
    , m_inverted(inverted)
{
    if (variable.expired()) {
        throw ExceptionBase("A filter by value needs a variable of the open study.");
    }
}

FilterAbstract::FilterAbstract(std::string tag, bool inverted)
    : m_tag(std::move(tag))
    , m_inverted(inverted)
{
    if (m_tag.empty()) {
        throw ExceptionBase("A filter by tag needs the name of a tag.");
    }
}

FilterAbstract::~FilterAbstract() = default;

WeakPtr<Variable> FilterAbstract::variable() const
{
    return m_variable;
}

std::string FilterAbstract::tag() const
{
    return m_tag;
}

bool FilterAbstract::isEnabled() const
{
    return m_enabled;
}

void FilterAbstract::setEnabled(bool enabled)
{
    if (enabled == m_enabled) {
        return;
    }
    m_enabled = enabled;
    emitFilterChanged();
}

bool FilterAbstract::isInverted() const
{
    return m_inverted;
}

void FilterAbstract::setInverted(bool inverted)
{
    if (inverted == m_inverted) {
        return;
    }
    m_inverted = inverted;
    emitFilterChanged();
}
