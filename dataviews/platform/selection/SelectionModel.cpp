#include <dataviews/platform/selection/SelectionModel.h>

SelectionModel::~SelectionModel() = default;

std::set<unsigned long long> SelectionModel::getSelections() const
{
    // Built in ascending order instead of copied: the nodes then lie in memory in the order of walking, which
    // makes every later walk over a large selection several times faster.
    return {m_selection.begin(), m_selection.end()};
}

void SelectionModel::setSelection(const std::set<unsigned long long>& cases)
{
    if (cases == m_selection) {
        return;
    }
    std::set<unsigned long long> selection(cases.begin(), cases.end());
    store(selection);
}

void SelectionModel::takeSelection(std::set<unsigned long long>&& cases)
{
    if (cases == m_selection) {
        return;
    }
    store(cases);
}

void SelectionModel::store(std::set<unsigned long long>& selection)
{
    m_selection.swap(selection); // what was selected before goes with the caller's set
    emitSelectionChanged(m_selection);
}
