#include <dataviews/platform/undo/DeleteSignaler.h>
#include <dataviews/platform/undo/GenericUndoCommand.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <QAction>

#include <boost/make_shared.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <vector>

namespace {

using testing::Each;
using testing::ElementsAre;

class UndoStackTest : public testing::Test
{
protected:
    UndoStackTest() { history().clear(); }

    ~UndoStackTest() override { history().clear(); }

    UndoStackTest(const UndoStackTest&) = delete;
    UndoStackTest& operator=(const UndoStackTest&) = delete;

    static QUndoStack& history() { return UndoStack::history(); }

    /// Pushes a change of the value to \p value; counts its redos.
    void change(int value, int id = -1, const QString& text = QStringLiteral("Change Zoom"))
    {
        push(
            [this, value] {
                m_value = value;
                ++m_redoCount;
            },
            [this, before = m_value] { m_value = before; },
            id,
            text);
    }

    void push(
        const boost::function<void()>& redo,
        const boost::function<void()>& undo,
        int id = -1,
        const QString& text = QStringLiteral("Change"))
    {
        UndoStack::push(std::make_unique<GenericUndoCommand>(redo, undo, *m_owner, text, id));
    }

    std::unique_ptr<DeleteSignaler> m_owner = std::make_unique<DeleteSignaler>();
    int m_value = 0;
    int m_redoCount = 0;
};

TEST_F(UndoStackTest, PushRunsRedoOnceAndRecordsTheChange)
{
    change(1);
    EXPECT_EQ(m_value, 1);
    EXPECT_EQ(m_redoCount, 1);
    EXPECT_EQ(history().count(), 1);

    history().undo();
    EXPECT_EQ(m_value, 0);
    history().redo();
    EXPECT_EQ(m_value, 1);
    EXPECT_EQ(m_redoCount, 2);
    history().undo();
    history().redo();

    EXPECT_EQ(m_redoCount, 3);
}

TEST_F(UndoStackTest, ActionsCarryTheTextOfWhatTheyUndo)
{
    QObject parent;
    const QAction* undo = history().createUndoAction(&parent);
    const QAction* redo = history().createRedoAction(&parent);
    EXPECT_FALSE(undo->isEnabled());

    change(1, -1, QStringLiteral("Change Größe"));
    EXPECT_TRUE(undo->isEnabled());
    EXPECT_TRUE(undo->text().contains(QStringLiteral("Change Größe")))
        << undo->text().toStdString();
    EXPECT_FALSE(redo->isEnabled());
    history().undo();

    EXPECT_FALSE(undo->isEnabled());
    EXPECT_TRUE(redo->isEnabled());
    EXPECT_TRUE(redo->text().contains(QStringLiteral("Change Größe")))
        << redo->text().toStdString();
}

TEST_F(UndoStackTest, CommandsWithTheSameIdFromZeroUpMerge)
{
    struct Case
    {
        int first;
        int second;
        int entries;
    };

    const int fresh = UndoStack::nextUndoID();
    const int fresher = UndoStack::nextUndoID();
    const Case cases[] = {
        {0, 0, 1}, {7, 8, 2}, {-1, -1, 2}, {-2, -2, 2}, {fresh, fresh, 1}, {fresh, fresher, 2}};
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.first << ", " << c.second);
        history().clear();
        m_value = 0;

        change(1, c.first);
        change(2, c.second);

        EXPECT_EQ(history().count(), c.entries);
        EXPECT_EQ(m_value, 2);
        history().undo();
        EXPECT_EQ(m_value, c.entries == 1 ? 0 : 1);
        history().redo();
        EXPECT_EQ(m_value, 2);
    }
}

TEST_F(UndoStackTest, CommandsMergeInsideAMacroButNotAcrossItsEdge)
{
    change(1, 5);
    {
        const UndoStack::Macro macro(QStringLiteral("Macro"));
        change(2, 5);
        change(3, 5);
    }
    change(4, 5);

    EXPECT_EQ(history().count(), 3);
    ASSERT_NE(history().command(1), nullptr);
    EXPECT_EQ(history().command(1)->childCount(), 1);
    history().setIndex(1);
    EXPECT_EQ(m_value, 1);
}

TEST_F(UndoStackTest, NestedMacrosMakeOneEntryNamedByTheOutermost)
{
    {
        const UndoStack::Macro outer(QStringLiteral("Outer"));
        change(1);
        {
            const UndoStack::Macro inner(QStringLiteral("Inner"));
            change(2);
            change(3);
        }
        change(4);
    }
    EXPECT_EQ(history().count(), 1);
    EXPECT_EQ(history().undoText(), QStringLiteral("Outer"));
    EXPECT_EQ(history().command(0)->childCount(), 3);

    history().undo();
    EXPECT_EQ(m_value, 0);
    history().redo();
    EXPECT_EQ(m_value, 4);

    change(5);
    EXPECT_EQ(history().count(), 2) << "A macro that has ended takes no more commands.";
}

TEST_F(UndoStackTest, EmptyMacroLeavesNoEntryAndKeepsWhatCanBeRedone)
{
    change(1);
    history().undo();

    {
        const UndoStack::Macro outer(QStringLiteral("Outer"));
        const UndoStack::Macro inner(QStringLiteral("Inner"));
    }
    {
        const UndoStack::Macro macro(QStringLiteral("Nothing recorded"));
        const UndoStack::SuspendUndoRecording suspended;
        change(8);
    }

    EXPECT_EQ(history().count(), 1);
    ASSERT_TRUE(history().canRedo());
    history().redo();
    EXPECT_EQ(m_value, 1);
}

TEST_F(UndoStackTest, SuspendedRecordingRunsRedoOnceAndForgetsTheCommand)
{
    change(1);
    history().undo();
    m_redoCount = 0;
    const auto held = boost::make_shared<int>(0);
    {
        const UndoStack::SuspendUndoRecording outer;
        {
            const UndoStack::SuspendUndoRecording inner;
            change(2);
        }
        EXPECT_TRUE(UndoStack::recordingIsSuspended());
        change(3);
        push([held] {}, [] {});
        EXPECT_EQ(held.use_count(), 1) << "The command is still kept.";
    }

    EXPECT_FALSE(UndoStack::recordingIsSuspended());
    EXPECT_EQ(m_value, 3);
    EXPECT_EQ(m_redoCount, 2);
    EXPECT_EQ(history().count(), 1);
    EXPECT_TRUE(history().canRedo());
}

TEST_F(UndoStackTest, MacroBegunWhileSuspendedStaysNothing)
{
    auto suspended = std::make_unique<UndoStack::SuspendUndoRecording>();
    {
        const UndoStack::Macro macro(QStringLiteral("Macro"));
        change(1);
        suspended.reset();
        change(2);
        change(3);
    }

    EXPECT_EQ(history().count(), 2);
}

TEST_F(UndoStackTest, UndoOrRedoIsInProgressButNotInTheFirstRedo)
{
    std::vector<bool> inRedo;
    std::vector<bool> inUndo;
    const auto redo = [&] { inRedo.push_back(UndoStack::undoOrRedoInProgress()); };
    const auto undo = [&] { inUndo.push_back(UndoStack::undoOrRedoInProgress()); };
    {
        const UndoStack::Macro macro(QStringLiteral("Macro"));
        push(redo, undo);
        push([&] { push(redo, undo); }, [] {}); // a push within the first redo of another
    }
    {
        const UndoStack::SuspendUndoRecording suspended;
        push(redo, undo);
    }
    EXPECT_THAT(inRedo, ElementsAre(false, false, false));
    EXPECT_FALSE(UndoStack::undoOrRedoInProgress());
    inRedo.clear();

    history().undo();
    EXPECT_THAT(inUndo, ElementsAre(true, true));
    EXPECT_FALSE(UndoStack::undoOrRedoInProgress());
    history().redo();

    EXPECT_FALSE(inRedo.empty());
    EXPECT_THAT(inRedo, Each(true));
    EXPECT_FALSE(UndoStack::undoOrRedoInProgress());
}

TEST_F(UndoStackTest, ChangesMadeByListenersDuringUndoAndRedoAreNotRecorded)
{
    int echoes = 0;
    const auto echo = [&] {
        const UndoStack::Macro macro(QStringLiteral("Echo"));
        push([&] { ++echoes; }, [] { ADD_FAILURE() << "An unrecorded change was undone."; });
    };
    change(1);
    bool echoing = false;
    const auto redo = [&] {
        if (echoing) {
            echo();
        }
    };
    push(redo, echo);
    echoing = true;

    history().undo();
    EXPECT_EQ(echoes, 1);
    EXPECT_EQ(history().count(), 2);
    EXPECT_TRUE(history().canRedo());
    history().redo();
    EXPECT_EQ(echoes, 2);
    EXPECT_EQ(history().count(), 2);
    EXPECT_FALSE(history().canRedo());

    change(2);
    EXPECT_EQ(history().count(), 3) << "Recording goes on after the undo.";
}

TEST_F(UndoStackTest, ExceptionOutOfTheFirstRedoForgetsTheCommand)
{
    const auto refuse = [] { throw std::runtime_error("refused"); };
    {
        const UndoStack::Macro macro(QStringLiteral("Macro"));
        EXPECT_THROW(push(refuse, [] {}), std::runtime_error);
        {
            const UndoStack::SuspendUndoRecording suspended;
            EXPECT_THROW(push(refuse, [] {}), std::runtime_error);
        }
        EXPECT_EQ(history().count(), 0);
        change(1);
    }

    EXPECT_FALSE(UndoStack::undoOrRedoInProgress());
    EXPECT_EQ(history().count(), 1);
    history().undo();
    EXPECT_EQ(m_value, 0);
}

TEST_F(UndoStackTest, ExceptionOutOfUndoAndRedoLeavesTheFlagAndTheEntry)
{
    bool refuses = false;
    std::vector<bool> inProgress;
    const auto act = [&] {
        inProgress.push_back(UndoStack::undoOrRedoInProgress());
        if (refuses) {
            throw std::runtime_error("refused");
        }
    };
    push(act, act);

    refuses = true;
    EXPECT_THROW(history().undo(), std::runtime_error);
    EXPECT_FALSE(UndoStack::undoOrRedoInProgress());
    EXPECT_TRUE(history().canUndo());
    refuses = false;
    history().undo();
    refuses = true;
    EXPECT_THROW(history().redo(), std::runtime_error);
    EXPECT_FALSE(UndoStack::undoOrRedoInProgress());

    EXPECT_THAT(inProgress, ElementsAre(false, true, true, true));
    change(1);
    EXPECT_EQ(history().count(), 1) << "Recording goes on after the failure.";
}

TEST_F(UndoStackTest, PushForADeadOwnerDoesNothingAndLeavesTheFlagRight)
{
    bool ran = false;
    bool inUndo = false;
    const DeleteSignaler living;
    UndoStack::push(std::make_unique<GenericUndoCommand>(
        [] {}, [&] { inUndo = UndoStack::undoOrRedoInProgress(); }, living, QString()));
    auto late = std::make_unique<GenericUndoCommand>(
        [&] { ran = true; }, [&] { ran = true; }, *m_owner, QString());

    m_owner.reset();
    UndoStack::push(std::move(late));
    history().setIndex(0);

    EXPECT_FALSE(ran);
    EXPECT_TRUE(inUndo);
}

} // namespace
