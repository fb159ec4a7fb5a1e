#include <analyzer/selection/UndoableSelectionModel.h>

#include <dataviews/platform/undo/UndoStack.h>

#include <memory>
#include <utility>

namespace analyzer {

UndoableSelectionModel::UndoableSelectionModel()
    : m_undoId(UndoStack::nextUndoID())
    , m_cases(SelectionModel::cases())
{
    // The first listener of all, and so told before any other.
    m_connections.add(signalSelectionChanged.connect(
        [this](const CaseSelection& selection) { record(selection.cases()); }));
}

UndoableSelectionModel::~UndoableSelectionModel() = default;

void UndoableSelectionModel::record(const SharedCases& cases)
{
    const SharedCases before = std::exchange(m_cases, cases);
    // While an undo or redo runs, or recording is suspended, the stack forgets the entry.
    UndoStack::push(std::make_unique<SelectionChange>(
        before,
        m_cases,
        [this](const SharedCases& shown) { takeCases(shown); },
        m_deleteSignaler,
        m_undoId,
        m_gesture.number()));
}

} // namespace analyzer
