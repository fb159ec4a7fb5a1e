#include <dataviews/platform/selection/SelectionModel.h>

#include <boost/make_shared.hpp>

SelectionModel::~SelectionModel() = default;

std::set<unsigned long long> SelectionModel::getSelections() const
{
    return m_selection->toSet();
}

void SelectionModel::setSelection(const std::set<unsigned long long>& cases)
{
    SelectionModel::takeCases(boost::make_shared<const CaseSet>(cases));
}

SelectionModel::SharedCases SelectionModel::cases() const
{
    return m_selection.cases();
}

void SelectionModel::takeCases(const SharedCases& cases)
{
    if (*cases == *m_selection) {
        return;
    }
    m_selection.reset(cases);
    emitSelectionChanged(m_selection);
}
