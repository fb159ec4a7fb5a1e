#pragma once

#include <analyzer/views/SelectedCasesReference.h>
#include <analyzer/views/SettingAbstract.h>

#include <dataviews/common/views/PropertyAbstract.h>

#include <boost/shared_ptr.hpp>
#include <boost/signals2/connection.hpp>

#include <string>
#include <vector>

namespace analyzer {

/// The choice of a reference: none, the first case, or one of those that are offered; any other of the study can be set.
class SelectedCasesReferenceSetting : public SettingAbstract<SettingInterface>
{
public:
    SelectedCasesReferenceSetting(
        std::string name,
        std::string label,
        boost::shared_ptr<corvane::PropertyAbstract<SelectedCasesReference>> property);

    /// Offers these, as long as no others are.
    void offerCases(const std::vector<unsigned long long>& caseIDs);

    [[nodiscard]] Kind kind() const override { return Kind::Choice; }

    [[nodiscard]] std::vector<std::string> choices() const override;
    [[nodiscard]] std::string text() const override;
    void setText(const std::string& text) override;

private:
    boost::shared_ptr<corvane::PropertyAbstract<SelectedCasesReference>> m_property;
    std::vector<unsigned long long> m_offered;
    boost::signals2::scoped_connection m_connection;
};

} // namespace analyzer
