#pragma once

#include <dataviews/platform/selection/CaseSet.h>
#include <dataviews/platform/undo/GenericUndoCommand.h>

#include <boost/function.hpp>
#include <boost/shared_ptr.hpp>

namespace analyzer {

/// The undo entry of a change of the selection: "Select 1,204 Cases", "Clear Selection".
///
/// Entries that follow one another share the selection between them.
class SelectionChange : public GenericUndoCommand
{
public:
    using Cases = boost::shared_ptr<const CaseSet>;

    /// \p show makes a selection the present one, also when the entry is pushed. Entries of the same \p gesture from 1
    /// up become one if they have the same \p undoId; 0 stands for none.
    SelectionChange(
        const Cases& before,
        const Cases& after,
        const boost::function<void(const Cases&)>& show,
        const DeleteSignaler& deleteSignaler,
        int undoId,
        unsigned long long gesture);

    /// Obsolete, which the history drops, where \p other goes back to the selection before this change.
    bool mergeWith(const QUndoCommand* other) override;

    [[nodiscard]] const Cases& before() const { return m_before; }

    [[nodiscard]] const Cases& after() const { return m_after; }

private:
    Cases m_before;
    Cases m_after;
    unsigned long long m_gesture;
};

} // namespace analyzer
