#include <analyzer/views/SelectedCasesReferenceSetting.h>

#include <algorithm>
#include <utility>

namespace analyzer {

SelectedCasesReferenceSetting::SelectedCasesReferenceSetting(
    std::string name,
    std::string label,
    boost::shared_ptr<corvane::PropertyAbstract<SelectedCasesReference>> property)
    : SettingAbstract<SettingInterface>(std::move(name), std::move(label))
    , m_property(std::move(property))
    , m_connection(m_property->valueChanged.connect(
          [this](const SelectedCasesReference&) { emitChanged(); }))
{}

void SelectedCasesReferenceSetting::offerCases(const std::vector<unsigned long long>& caseIDs)
{
    if (caseIDs != m_offered) {
        m_offered = caseIDs;
        emitChanged();
    }
}

std::vector<std::string> SelectedCasesReferenceSetting::choices() const
{
    using Reference = SelectedCasesReference;
    std::vector<std::string> result = {
        Reference().text(), Reference{Reference::Kind::First, 0}.text()};
    for (const unsigned long long caseID : m_offered) {
        result.push_back(Reference::pinned(caseID).text());
    }
    // A pinned case that is not selected can be kept.
    if (std::find(result.begin(), result.end(), text()) == result.end()) {
        result.push_back(text());
    }
    return result;
}

std::string SelectedCasesReferenceSetting::text() const
{
    return m_property->value().text();
}

void SelectedCasesReferenceSetting::setText(const std::string& text)
{
    const SelectedCasesReference reference = SelectedCasesReference::fromText(text);
    if (!reference.isInStudy()) {
        throw ExceptionBase(
            "The study has no case " + std::to_string(reference.caseID) + " to be the reference.");
    }
    m_property->setValue(reference);
}

} // namespace analyzer
