#include <analyzer/selection/UndoableSelectionModel.h>

#include <dataviews/platform/undo/UndoStack.h>

#include <boost/make_shared.hpp>

#include <memory>
#include <set>
#include <utility>

namespace analyzer {

UndoableSelectionModel::UndoableSelectionModel()
    : m_undoId(UndoStack::nextUndoID())
    , m_cases(boost::make_shared<const CompressedCases>())
{
    // The first listener of all, and so told before any other.
    m_connections.add(signalSelectionChanged.connect(
        [this](const std::set<unsigned long long>& selection) { record(selection); }));
}

UndoableSelectionModel::~UndoableSelectionModel() = default;

void UndoableSelectionModel::show(const Cases& cases)
{
    // The push of an entry comes here too, with what is selected already.
    if (cases == m_cases) {
        return;
    }
    std::set<unsigned long long> selection = cases->toSet();
    m_toCases = cases;
    takeSelection(std::move(selection));
    if (m_toCases) {
        m_cases = std::exchange(m_toCases, {}); // equal to what was selected: no change
    }
}

void UndoableSelectionModel::record(const std::set<unsigned long long>& selection)
{
    const Cases before = std::exchange(
        m_cases, m_toCases ? m_toCases : boost::make_shared<const CompressedCases>(selection));
    m_toCases.reset();
    // While an undo or redo runs, or recording is suspended, the stack forgets the entry.
    UndoStack::push(std::make_unique<SelectionChange>(
        before,
        m_cases,
        [this](const Cases& cases) { show(cases); },
        m_deleteSignaler,
        m_undoId,
        m_gesture.number()));
}

} // namespace analyzer
