#include <dataviews/platform/undo/GenericUndoCommand.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <QCoreApplication>

#include <algorithm>
#include <utility>
#include <vector>

namespace {

/// What the stack keeps besides the history.
struct State
{
    QUndoStack* history = nullptr;
    std::vector<UndoStack::Macro*> macros; ///< the live ones, outermost first
    int suspensions = 0;
    int replays = 0;
    int nextID = 0;
    bool firstRedo = false; ///< the next command to run is being pushed
};

State& state()
{
    static State theState;
    return theState;
}

/// Lets the next command run without counting as a replay; for a push.
class FirstRedo
{
public:
    explicit FirstRedo(bool isFirst) { state().firstRedo = isFirst; }

    FirstRedo(const FirstRedo&) = delete;
    FirstRedo& operator=(const FirstRedo&) = delete;

    ~FirstRedo() { state().firstRedo = false; }
};

/// The history goes with the application object: its commands may hold things that need Qt to die.
void deleteHistory()
{
    delete std::exchange(state().history, nullptr);
}

} // namespace

UndoStack::Macro::Macro(QString text)
    : m_text(std::move(text))
{
    if (isRecording()) {
        state().macros.push_back(this);
        m_listed = true;
    }
}

UndoStack::Macro::~Macro()
{
    if (!m_listed) {
        return;
    }
    std::vector<Macro*>& macros = state().macros;
    macros.erase(std::find(macros.begin(), macros.end(), this));
    if (m_opened) {
        history().endMacro();
    }
}

UndoStack::SuspendUndoRecording::SuspendUndoRecording()
{
    ++state().suspensions;
}

UndoStack::SuspendUndoRecording::~SuspendUndoRecording()
{
    --state().suspensions;
}

UndoStack::Replay::Replay()
    : m_counts(!std::exchange(state().firstRedo, false))
{
    if (m_counts) {
        ++state().replays;
    }
}

UndoStack::Replay::~Replay()
{
    if (m_counts) {
        --state().replays;
    }
}

void UndoStack::push(std::unique_ptr<GenericUndoCommand> command)
{
    const bool record = isRecording();
    {
        const FirstRedo firstRedo(!undoOrRedoInProgress());
        command->redo();
    }
    if (!record) {
        return;
    }

    // Macros begin in the history with their first command, so that an empty one leaves nothing and does not
    // cost the user what could be redone.
    for (Macro* macro : state().macros) {
        if (!macro->m_opened) {
            history().beginMacro(macro->m_text);
            macro->m_opened = true;
        }
    }
    // The history insists on running the command once more; it is told to skip that.
    command->skipNextRedo();
    history().push(command.release());
}

bool UndoStack::recordingIsSuspended()
{
    return state().suspensions > 0;
}

bool UndoStack::undoOrRedoInProgress()
{
    return state().replays > 0;
}

int UndoStack::nextUndoID()
{
    return state().nextID++;
}

QUndoStack& UndoStack::history()
{
    State& s = state();
    if (s.history == nullptr) {
        s.history = new QUndoStack;
        if (QCoreApplication::instance() != nullptr) {
            qAddPostRoutine(deleteHistory);
        }
    }
    return *s.history;
}

bool UndoStack::isRecording()
{
    return !recordingIsSuspended() && !undoOrRedoInProgress();
}
