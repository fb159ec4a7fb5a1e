#include <dataviews/platform/undo/DeleteSignaler.h>
#include <dataviews/platform/undo/GenericUndoCommand.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace {

using testing::ElementsAre;

class GenericUndoCommandTest : public testing::Test
{
protected:
    std::unique_ptr<GenericUndoCommand> command(
        const std::string& name, int id, QUndoCommand* parent = nullptr)
    {
        return std::make_unique<GenericUndoCommand>(
            [this, name] { m_calls.push_back("redo " + name); },
            [this, name] { m_calls.push_back("undo " + name); },
            *m_owner,
            QStringLiteral("Change"),
            id,
            parent);
    }

    std::unique_ptr<DeleteSignaler> m_owner = std::make_unique<DeleteSignaler>();
    std::vector<std::string> m_calls;
};

TEST_F(GenericUndoCommandTest, DoesNothingOnceItsOwnerHasDied)
{
    const auto changed = command("zoom", -1);
    const boost::weak_ptr<const void> handle = m_owner->handle();
    changed->redo();
    changed->undo();
    EXPECT_FALSE(handle.expired());

    m_owner.reset();
    EXPECT_TRUE(handle.expired());
    changed->redo();
    changed->undo();

    EXPECT_THAT(m_calls, ElementsAre("redo zoom", "undo zoom"));
}

TEST_F(GenericUndoCommandTest, AChildRunsWithItsParentAndCountsAsUndoOrRedo)
{
    QUndoCommand parent;
    bool inProgress = false;
    command("a", -1, &parent).release(); // owned by parent
    new GenericUndoCommand(
        [&] { inProgress = UndoStack::undoOrRedoInProgress(); }, [] {}, *m_owner, {}, -1, &parent);

    parent.redo();
    parent.undo();

    EXPECT_THAT(m_calls, ElementsAre("redo a", "undo a"));
    EXPECT_TRUE(inProgress);
}

} // namespace
