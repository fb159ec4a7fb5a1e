#include <analyzer/views/VariableSetting.h>

#include <dataviews/platform/data/Project.h>

#include <utility>

namespace analyzer {

VariableSetting::VariableSetting(
    std::string name,
    std::string label,
    boost::shared_ptr<corvane::PropertyAbstract<WeakPtr<Variable>>> property,
    boost::function<bool(const Variable&)> accepts,
    std::string what,
    std::string nothing,
    Write write)
    : SettingAbstract<SettingInterface>(std::move(name), std::move(label))
    , m_property(std::move(property))
    , m_accepts(std::move(accepts))
    , m_what(std::move(what))
    , m_nothing(std::move(nothing))
    , m_write(std::move(write))
    , m_connection(
          m_property->valueChanged.connect([this](const WeakPtr<Variable>&) { emitChanged(); }))
{}

std::vector<std::string> VariableSetting::choices() const
{
    std::vector<std::string> names;
    if (!m_nothing.empty()) {
        names.push_back(nothingText());
    }
    for (const WeakPtr<Variable>& handle : Project::project().variables()) {
        const boost::shared_ptr<Variable> variable = handle.lock();
        if (variable && m_accepts(*variable)) {
            names.push_back(variable->name());
        }
    }
    return names;
}

std::string VariableSetting::text() const
{
    const boost::shared_ptr<Variable> variable = m_property->value().lock();
    return variable ? variable->name() : nothingText();
}

void VariableSetting::setText(const std::string& text)
{
    if (!m_nothing.empty() && text == nothingText()) {
        write({});
        return;
    }
    const WeakPtr<Variable> handle = Project::project().variable(text);
    const boost::shared_ptr<Variable> variable = handle.lock();
    if (!variable) {
        throw ExceptionBase("The study has no variable \"" + text + "\".");
    }
    if (!m_accepts(*variable)) {
        throw ExceptionBase(
            "\"" + text + "\" is not among the " + m_what + ", which " + name() + " takes.");
    }
    write(handle);
}

std::string VariableSetting::nothingText() const
{
    std::string text = m_nothing;
    while (!text.empty() && Project::project().variable(text).lock()) {
        text = "(" + text + ")";
    }
    return text;
}

void VariableSetting::write(const WeakPtr<Variable>& variable)
{
    if (m_write) {
        m_write(variable);
    } else {
        m_property->setValue(variable);
    }
}

} // namespace analyzer
