#include <dataviews/platform/signals/Signal.h>
#include <dataviews/platform/signals/SignalConnectionCollection.h>

#include <boost/make_shared.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

namespace {

class Speaker
{
public:
    void speak() const { signalSpoken(); }

    Signal<void(), Speaker> signalSpoken;
};

class SignalConnectionCollectionTest : public testing::Test
{
protected:
    void listen()
    {
        m_connections->add(m_speaker.signalSpoken.connect([this] { ++m_heard; }));
    }

    /// How many slots one emission reaches.
    int heard()
    {
        m_heard = 0;
        m_speaker.speak();
        return m_heard;
    }

    Speaker m_speaker;
    int m_heard = 0;
    std::unique_ptr<SignalConnectionCollection> m_connections =
        std::make_unique<SignalConnectionCollection>();
};

TEST_F(
    SignalConnectionCollectionTest, OneUnblockEndsAnyNumberOfBlocksAlsoForConnectionsAddedMeanwhile)
{
    listen();
    listen();
    EXPECT_EQ(heard(), 2);

    m_connections->block();
    m_connections->block();
    m_connections->block();
    listen();
    EXPECT_TRUE(m_connections->isBlocked());
    EXPECT_EQ(heard(), 0);
    m_connections->unblock();

    EXPECT_FALSE(m_connections->isBlocked());
    EXPECT_EQ(m_heard, 0) << "What was emitted while blocked is not delivered later.";
    EXPECT_EQ(heard(), 3);
}

TEST_F(SignalConnectionCollectionTest, ClearDisconnectsAndKeepsTheState)
{
    for (const bool blocked : {false, true}) {
        SCOPED_TRACE(blocked);
        listen();
        if (blocked) {
            m_connections->block();
        }

        m_connections->clear();

        EXPECT_EQ(m_speaker.signalSpoken.slotCount(), 0U);
        EXPECT_EQ(m_connections->isBlocked(), blocked);
        listen();
        EXPECT_EQ(heard(), blocked ? 0 : 1);
        m_connections->unblock();
        EXPECT_EQ(heard(), 1);
        m_connections->clear();
    }
}

TEST_F(SignalConnectionCollectionTest, DestructionDisconnectsEverything)
{
    listen();
    m_connections->block();
    listen();

    m_connections.reset();

    EXPECT_EQ(m_speaker.signalSpoken.slotCount(), 0U);
    EXPECT_EQ(heard(), 0);
}

TEST_F(SignalConnectionCollectionTest, BlocksOfOthersAreLeftAlone)
{
    const boost::signals2::connection connection =
        m_speaker.signalSpoken.connect([this] { ++m_heard; });
    m_connections->add(connection);
    boost::signals2::shared_connection_block others(connection);

    m_connections->block();
    m_connections->unblock();
    EXPECT_EQ(heard(), 0);
    others.unblock();

    EXPECT_EQ(heard(), 1);
}

TEST_F(SignalConnectionCollectionTest, SlotMayDestroyTheOwnerOfItsConnection)
{
    m_connections->add(
        m_speaker.signalSpoken.connect([this, captured = boost::make_shared<int>(1)] {
            m_connections.reset();
            m_heard += *captured; // what the slot holds lives on until it returns
        }));

    EXPECT_EQ(heard(), 1);
    EXPECT_EQ(heard(), 0);
}

TEST_F(SignalConnectionCollectionTest, ClearMayReleaseWhatAddsToTheCollection)
{
    const auto addWhenReleased = [this](void* /*object*/) { listen(); };
    boost::shared_ptr<void> captured(nullptr, addWhenReleased);
    m_connections->add(m_speaker.signalSpoken.connect([captured] {}));
    captured.reset();

    m_connections->clear();

    EXPECT_EQ(heard(), 1) << "The connection made during clear() was lost.";
    m_connections->block();
    EXPECT_EQ(heard(), 0) << "The connection made during clear() is not managed.";
}

TEST_F(SignalConnectionCollectionTest, ManyDeadConnectionsDoNotCostALiveOne)
{
    constexpr int many = 1000;
    listen();
    for (int count = 0; count < many; ++count) {
        const boost::signals2::connection dead =
            m_speaker.signalSpoken.connect([this] { ++m_heard; });
        m_connections->add(dead);
        dead.disconnect();
    }
    EXPECT_EQ(heard(), 1);

    m_connections->block();

    EXPECT_EQ(heard(), 0);
}

} // namespace
