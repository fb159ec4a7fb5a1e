#include <dataviews/platform/undo/DeleteSignaler.h>
#include <dataviews/platform/undo/GenericUndoCommand.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <utility>

GenericUndoCommand::GenericUndoCommand(
    boost::function<void()> redo,
    boost::function<void()> undo,
    const DeleteSignaler& deleteSignaler,
    const QString& text,
    int id,
    QUndoCommand* parent)
    : QUndoCommand(text, parent)
    , m_redo(std::move(redo))
    , m_undo(std::move(undo))
    , m_owner(deleteSignaler.handle())
    , m_id(id)
{}

GenericUndoCommand::~GenericUndoCommand() = default;

void GenericUndoCommand::undo()
{
    const UndoStack::Replay replay;
    QUndoCommand::undo(); // children, which came after the change itself
    if (!m_owner.expired()) {
        m_undo();
    }
}

void GenericUndoCommand::redo()
{
    if (std::exchange(m_skipNextRedo, false)) {
        return;
    }
    const UndoStack::Replay replay;
    if (!m_owner.expired()) {
        m_redo();
    }
    QUndoCommand::redo(); // children
}

int GenericUndoCommand::id() const
{
    return m_id;
}

bool GenericUndoCommand::mergeWith(const QUndoCommand* other)
{
    const auto* command = dynamic_cast<const GenericUndoCommand*>(other);
    // A dead owner's entry does nothing any more and would swallow the change of a living one.
    if (command == nullptr || m_id < 0 || command->m_id != m_id || m_owner.expired()) {
        return false;
    }
    m_redo = command->m_redo;
    return true;
}
