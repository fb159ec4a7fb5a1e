#pragma once

#include <dataviews/platform/undo/PlatformUndoExport.h>

#include <QString>
#include <QUndoStack>

#include <memory>

class GenericUndoCommand;

/// The undo history of the application: one, reached statically, on the GUI thread.
///
/// A thin rule book over a QUndoStack, which supplies the history itself, ready-made actions for menus, and views
/// of the history: see history(). Nothing is recorded while recording is suspended or while an undo or redo runs.
class DATAVIEWS_PLATFORM_UNDO_EXPORT UndoStack
{
public:
    /// Makes one entry of all commands pushed during its lifetime. Macros nest: an inner one becomes part of the
    /// outer. A macro into which nothing was pushed leaves no entry, and one begun while nothing is recorded is
    /// nothing at all.
    class DATAVIEWS_PLATFORM_UNDO_EXPORT Macro
    {
    public:
        /// \p text names the entry for people.
        explicit Macro(QString text);
        Macro(const Macro&) = delete;
        Macro& operator=(const Macro&) = delete;
        ~Macro();

    private:
        friend class UndoStack;

        QString m_text;
        bool m_listed = false;
        bool m_opened = false;
    };

    /// Stops recording for its lifetime; nests.
    class DATAVIEWS_PLATFORM_UNDO_EXPORT SuspendUndoRecording
    {
    public:
        SuspendUndoRecording();
        SuspendUndoRecording(const SuspendUndoRecording&) = delete;
        SuspendUndoRecording& operator=(const SuspendUndoRecording&) = delete;
        ~SuspendUndoRecording();
    };

    UndoStack() = delete;

    /// Runs the redo of \p command once and records the command: into the innermost macro, merged into the last
    /// entry if both have the same id from 0 up, else as a new entry. If nothing is recorded now, the command is
    /// forgotten after its redo. An exception that leaves the redo passes on, and the command is forgotten.
    static void push(std::unique_ptr<GenericUndoCommand> command);

    /// Whether a SuspendUndoRecording is alive.
    [[nodiscard]] static bool recordingIsSuspended();

    /// Whether the undo or the redo of a command runs now; the first redo, inside push(), does not count.
    [[nodiscard]] static bool undoOrRedoInProgress();

    /// A number for commands that are to merge with each other and with no others; a new one at each call.
    [[nodiscard]] static int nextUndoID();

    /// The history, for actions, texts, history views and limits. Commands are pushed by push() only.
    [[nodiscard]] static QUndoStack& history();

private:
    friend class GenericUndoCommand;

    /// Marks that a command runs; the first redo of a push is let through unmarked.
    class Replay
    {
    public:
        Replay();
        Replay(const Replay&) = delete;
        Replay& operator=(const Replay&) = delete;
        ~Replay();

    private:
        bool m_counts;
    };

    [[nodiscard]] static bool isRecording();
};
