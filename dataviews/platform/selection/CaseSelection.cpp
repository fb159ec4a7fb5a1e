#include <dataviews/platform/selection/CaseSelection.h>

#include <boost/make_shared.hpp>

#include <utility>

CaseSelection::CaseSelection()
    : CaseSelection(boost::make_shared<const CaseSet>())
{}

CaseSelection::CaseSelection(SharedCases cases)
    : m_cases(std::move(cases))
{}

CaseSelection::CaseSelection(const std::set<unsigned long long>& cases)
    : m_given(&cases)
{}

CaseSelection::~CaseSelection() = default;

void CaseSelection::reset(SharedCases cases)
{
    m_cases = std::move(cases);
    m_given = nullptr;
    if (m_hasSet) {
        m_set = m_cases->toSet();
    }
}

const CaseSelection::SharedCases& CaseSelection::cases() const
{
    if (!m_cases) {
        m_cases = boost::make_shared<const CaseSet>(*m_given);
    }
    return m_cases;
}

CaseSelection::operator const std::set<unsigned long long>&() const
{
    if (m_given != nullptr) {
        return *m_given;
    }
    if (!m_hasSet) {
        m_set = m_cases->toSet();
        m_hasSet = true;
    }
    return m_set;
}
