#include <dataviews/platform/signals/Signal.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

namespace {

using testing::ElementsAre;

class Speaker
{
public:
    explicit Speaker(boost::function<void()> connectedHook = boost::function<void()>())
        : signalSpoken(std::move(connectedHook))
    {}

    void speak(int word) const { signalSpoken(word); }

    Signal<void(int), Speaker> signalSpoken;
};

class SignalTest : public testing::Test
{
protected:
    /// A slot that notes \p name.
    auto note(const std::string& name)
    {
        return [this, name](int /*word*/) { m_heard.push_back(name); };
    }

    std::unique_ptr<Speaker> m_speaker = std::make_unique<Speaker>();
    std::vector<std::string> m_heard;
};

static_assert(
    !std::is_invocable_v<const Signal<void(int), Speaker>&, int>,
    "Only the owner of a signal may emit it.");
static_assert(!std::is_copy_constructible_v<Signal<void(int), Speaker>>);

TEST_F(SignalTest, SlotsGetTheArgumentsInTheOrderOfConnecting)
{
    std::vector<int> words;
    m_speaker->signalSpoken.connect([&words](int word) { words.push_back(word); });
    m_speaker->signalSpoken.connect([&words](int word) { words.push_back(10 * word); });

    m_speaker->speak(1);
    m_speaker->speak(2);

    EXPECT_THAT(words, ElementsAre(1, 10, 2, 20));
}

TEST_F(SignalTest, HookRunsAfterEachConnect)
{
    std::vector<std::size_t> slotCounts;
    const Speaker* spoken = nullptr;
    const Speaker speaker([&] { slotCounts.push_back(spoken->signalSpoken.slotCount()); });
    spoken = &speaker;

    speaker.signalSpoken.connect(note("any"));
    const boost::signals2::connection second = speaker.signalSpoken.connect(note("any"));
    second.disconnect();
    speaker.signalSpoken.connect(note("any"));

    EXPECT_THAT(slotCounts, ElementsAre(1, 2, 2));
}

TEST_F(SignalTest, SlotMayDisconnectItselfAndALaterOne)
{
    boost::signals2::connection self;
    boost::signals2::connection later;
    self = m_speaker->signalSpoken.connect([&](int) {
        m_heard.emplace_back("self");
        self.disconnect();
        later.disconnect();
    });
    later = m_speaker->signalSpoken.connect(note("later"));
    m_speaker->signalSpoken.connect(note("last"));

    m_speaker->speak(1);
    m_speaker->speak(2);

    EXPECT_THAT(m_heard, ElementsAre("self", "last", "last"));
}

TEST_F(SignalTest, SlotMayDestroyTheOwnerOfTheSignal)
{
    const boost::signals2::connection connection = m_speaker->signalSpoken.connect([this](
                                                                                       int word) {
        m_speaker.reset();
        m_heard.push_back(std::to_string(word)); // the slot's own storage lives on until it returns
    });

    const Speaker& speaker = *m_speaker;
    speaker.speak(3);

    EXPECT_THAT(m_heard, ElementsAre("3"));
    EXPECT_FALSE(connection.connected());
}

TEST_F(SignalTest, ExceptionOfASlotEndsTheEmissionAndPassesOn)
{
    m_speaker->signalSpoken.connect([](int word) {
        if (word == 1) {
            throw std::runtime_error("refused");
        }
    });
    m_speaker->signalSpoken.connect(note("later"));

    EXPECT_THROW(m_speaker->speak(1), std::runtime_error);
    EXPECT_THAT(m_heard, ElementsAre());
    m_speaker->speak(2);

    EXPECT_THAT(m_heard, ElementsAre("later"));
}

TEST_F(SignalTest, ThreadsConnectAndDisconnectAtTheSameTime)
{
    constexpr int rounds = 1000;
    const auto connectAndDisconnect = [this] {
        for (int round = 0; round < rounds; ++round) {
            m_speaker->signalSpoken.connect(note("any"));
            m_speaker->signalSpoken.connect(note("any")).disconnect();
        }
    };

    std::thread other(connectAndDisconnect);
    connectAndDisconnect();
    other.join();

    EXPECT_EQ(m_speaker->signalSpoken.slotCount(), 2U * rounds);
}

} // namespace
