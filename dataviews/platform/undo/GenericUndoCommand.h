#pragma once

#include <dataviews/platform/undo/PlatformUndoExport.h>

#include <QString>
#include <QUndoCommand>

#include <boost/function.hpp>
#include <boost/weak_ptr.hpp>

class DeleteSignaler;

/// One undoable change, given as two functions.
///
/// While undo or redo runs a function, UndoStack::undoOrRedoInProgress() is true and nothing is recorded. Once the
/// owner of \p deleteSignaler has died, both do nothing.
class DATAVIEWS_PLATFORM_UNDO_EXPORT GenericUndoCommand : public QUndoCommand
{
public:
    /// \p text names the change for people, as in "Change Zoom". Commands with the same \p id from 0 up that
    /// follow one another become one step; -1 never does. \p parent owns the command unless it is null.
    GenericUndoCommand(
        boost::function<void()> redo,
        boost::function<void()> undo,
        const DeleteSignaler& deleteSignaler,
        const QString& text,
        int id = -1,
        QUndoCommand* parent = nullptr);
    GenericUndoCommand(const GenericUndoCommand&) = delete;
    GenericUndoCommand& operator=(const GenericUndoCommand&) = delete;
    ~GenericUndoCommand() override;

    void undo() override;
    void redo() override;
    [[nodiscard]] int id() const override;

    /// Takes over the redo function of \p other, so that one undo goes back to before both.
    bool mergeWith(const QUndoCommand* other) override;

private:
    friend class UndoStack;

    /// For a command whose redo has been run already when the history takes it.
    void skipNextRedo() { m_skipNextRedo = true; }

    boost::function<void()> m_redo;
    boost::function<void()> m_undo;
    boost::weak_ptr<const void> m_owner;
    int m_id;
    bool m_skipNextRedo = false;
};
