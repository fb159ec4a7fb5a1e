#pragma once

#include <analyzer/selection/InputGesture.h>
#include <analyzer/selection/SelectionChange.h>

#include <dataviews/platform/selection/SelectionModel.h>
#include <dataviews/platform/signals/SignalConnectionCollection.h>
#include <dataviews/platform/undo/DeleteSignaler.h>

namespace analyzer {

/// The selection, with each change on the undo stack.
///
/// The changes of one gesture of the user, as of dragging the mouse through the rows of a table or of holding a key
/// down, are one entry, and none if they end where they began; see InputGesture. Other changes, as those by menus and
/// programs, are each an entry. A change is recorded before anybody is told of it, so that what listeners change comes
/// behind it in the history. As everything that can be undone, for the GUI thread.
class UndoableSelectionModel : public SelectionModel
{
public:
    UndoableSelectionModel();
    UndoableSelectionModel(const UndoableSelectionModel&) = delete;
    UndoableSelectionModel& operator=(const UndoableSelectionModel&) = delete;
    ~UndoableSelectionModel() override;

private:
    /// Puts the change from m_cases to \p cases, which has happened, on the undo stack.
    void record(const SharedCases& cases);

    DeleteSignaler m_deleteSignaler;
    InputGesture m_gesture;
    int m_undoId;
    SharedCases m_cases; ///< always what is selected
    SignalConnectionCollection m_connections;
};

} // namespace analyzer
