#include <dataviews/common/views/BoundedValueValidator.h>
#include <dataviews/common/views/Property.h>
#include <dataviews/common/views/UndoablePropertyProxy.h>

#include <boost/make_shared.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <optional>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using testing::ElementsAre;
using Wrapped = corvane::Property<int>;
using Proxy = corvane::UndoablePropertyProxy<int>;

class UndoablePropertyProxyTest : public testing::Test
{
protected:
    UndoablePropertyProxyTest()
    {
        history().clear();
        m_proxy.valueChanged.connect([this](int value) { m_told.push_back(value); });
    }

    static QUndoStack& history() { return UndoStack::history(); }

    static std::string undoText(int index) { return history().text(index).toStdString(); }

    std::vector<int> takeTold() { return std::exchange(m_told, {}); }

    boost::shared_ptr<Wrapped> m_wrapped = boost::make_shared<Wrapped>(
        10, boost::make_shared<corvane::BoundedValueValidator<int>>(3, 40));
    Proxy m_proxy{"Number of Labels", m_wrapped};
    std::vector<int> m_told;
};

TEST_F(UndoablePropertyProxyTest, ChangeIsOneEntryThatUndoAndRedoReplayWithoutNewOnes)
{
    m_proxy.setValue(20);
    EXPECT_EQ(m_wrapped->value(), 20);
    EXPECT_EQ(history().count(), 1);
    EXPECT_EQ(undoText(0), "Change Number of Labels");
    EXPECT_THAT(takeTold(), ElementsAre(20));

    // A replayed step is told twice: by the wrapped property and by the proxy.
    history().undo();
    EXPECT_EQ(m_proxy.value(), 10);
    EXPECT_THAT(takeTold(), ElementsAre(10, 10));

    history().redo();
    EXPECT_EQ(m_proxy.value(), 20);
    EXPECT_THAT(takeTold(), ElementsAre(20, 20));
    EXPECT_EQ(history().count(), 1);
    EXPECT_FALSE(history().canRedo());
}

TEST_F(UndoablePropertyProxyTest, NoChangeAndRefusedValueLeaveNoTrace)
{
    m_proxy.setValue(10);
    EXPECT_EQ(m_proxy.validator(), m_wrapped->validator());
    try {
        m_proxy.setValue(41);
        FAIL() << "The value was not refused.";
    } catch (const corvane::InvalidPropertyValueException& error) {
        EXPECT_STREQ(
            error.what(),
            "The value must be greater than or equal to 3 and less than or equal to 40.");
    }

    EXPECT_EQ(history().count(), 0);
    EXPECT_THAT(takeTold(), ElementsAre());
    EXPECT_EQ(m_wrapped->value(), 10);
}

TEST_F(UndoablePropertyProxyTest, ExceptionOfAListenerEndsTheRecordingOfThatChangeOnly)
{
    bool throwing = true;
    m_proxy.valueChanged.connect([&](int) {
        if (throwing) {
            throw std::runtime_error("listener");
        }
    });

    EXPECT_THROW(m_proxy.setValue(20), std::runtime_error);
    EXPECT_EQ(m_proxy.value(), 20);
    EXPECT_EQ(history().count(), 0);

    // The macro is closed and the proxy no longer takes itself for storing.
    throwing = false;
    m_proxy.setValue(30);
    EXPECT_EQ(history().count(), 1);
    history().undo();
    EXPECT_EQ(m_proxy.value(), 20);
}

TEST_F(UndoablePropertyProxyTest, ChangesByOthersAreToldOnceAndNotRecorded)
{
    m_wrapped->setValue(15);

    EXPECT_THAT(takeTold(), ElementsAre(15));
    EXPECT_EQ(m_proxy.value(), 15);
    EXPECT_EQ(history().count(), 0);
}

TEST_F(UndoablePropertyProxyTest, ReplayDoesNothingWhereTheValueIsAlreadyThere)
{
    m_proxy.setValue(20);
    m_wrapped->setValue(10);
    m_told.clear();

    history().undo();

    EXPECT_THAT(takeTold(), ElementsAre());
    EXPECT_EQ(m_proxy.value(), 10);
    history().redo();
    EXPECT_THAT(takeTold(), ElementsAre(20, 20));
}

TEST_F(UndoablePropertyProxyTest, ChangesOfListenersBelongToTheEntryAndAreNotRecordedInAReplay)
{
    const auto followerValue = boost::make_shared<Wrapped>(0);
    Proxy follower("Follower", followerValue);
    m_proxy.valueChanged.connect([&](int value) { follower.setValue(value * 2); });

    m_proxy.setValue(20);
    EXPECT_EQ(follower.value(), 40);
    EXPECT_EQ(history().count(), 1);
    EXPECT_EQ(undoText(0), "Change Number of Labels");

    // The follower's own old value comes back, not what the listener would make of 10.
    history().undo();
    EXPECT_EQ(m_proxy.value(), 10);
    EXPECT_EQ(follower.value(), 0);
    EXPECT_EQ(history().count(), 1);
    history().redo();
    EXPECT_EQ(m_proxy.value(), 20);
    EXPECT_EQ(follower.value(), 40);
    EXPECT_EQ(history().count(), 1);
}

TEST_F(UndoablePropertyProxyTest, ChangesWithAnIdMergeUntilAnotherChangeComesBetween)
{
    Proxy zoom("Zoom", boost::make_shared<Wrapped>(100), UndoStack::nextUndoID());
    Proxy other("Other", boost::make_shared<Wrapped>(0), UndoStack::nextUndoID());

    zoom.setValue(110);
    zoom.setValue(120);
    zoom.setValue(130);
    EXPECT_EQ(history().count(), 1);
    EXPECT_EQ(undoText(0), "Change Zoom");
    other.setValue(1);
    zoom.setValue(140);
    EXPECT_EQ(history().count(), 3);

    history().undo();
    EXPECT_EQ(zoom.value(), 130);
    history().undo();
    EXPECT_EQ(other.value(), 0);
    history().undo();
    EXPECT_EQ(zoom.value(), 100);
    history().redo();
    EXPECT_EQ(zoom.value(), 130);
}

TEST_F(UndoablePropertyProxyTest, CommandsThatOutliveTheirProxyDoNothing)
{
    auto proxy = std::make_unique<Proxy>("Short-lived", m_wrapped);
    proxy->setValue(20);
    proxy.reset();
    m_told.clear();

    history().undo();
    history().redo();
    m_wrapped->setValue(30);

    EXPECT_EQ(m_wrapped->value(), 30);
    EXPECT_THAT(takeTold(), ElementsAre(30));
}

/// What three properties and their history should be, as plainly as can be.
struct Model
{
    struct Change
    {
        std::size_t property;
        int from;
        int to;
    };

    struct Step
    {
        std::vector<Change> changes;
        bool merges;
    };

    std::array<int, 3> values{};
    std::vector<Step> steps;
    std::size_t done = 0;
    std::optional<Step> macro;

    void set(std::size_t property, int value, bool recorded, bool merges)
    {
        if (values[property] == value) {
            return;
        }
        const Change change{property, values[property], value};
        values[property] = value;
        if (!recorded) {
            return;
        }
        if (macro) {
            macro->changes.push_back(change);
            return;
        }
        steps.resize(done);
        if (merges && done > 0 && steps.back().merges
            && steps.back().changes.front().property == property) {
            steps.back().changes.push_back(change);
            return;
        }
        steps.push_back({{change}, merges});
        done = steps.size();
    }

    void closeMacro()
    {
        if (!macro->changes.empty()) {
            steps.resize(done);
            steps.push_back(*macro);
            done = steps.size();
        }
        macro.reset();
    }

    void undo()
    {
        if (done > 0) {
            const Step& step = steps[--done];
            for (auto change = step.changes.rbegin(); change != step.changes.rend(); ++change) {
                values[change->property] = change->from;
            }
        }
    }

    void redo()
    {
        if (done < steps.size()) {
            for (const Change& change : steps[done++].changes) {
                values[change.property] = change.to;
            }
        }
    }
};

TEST_F(UndoablePropertyProxyTest, RandomHistoriesAgreeWithAPlainModel)
{
    for (unsigned seed = 1; seed <= 200; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        history().clear();
        std::mt19937 random(seed);
        const auto below = [&random](unsigned limit) {
            return static_cast<unsigned>(random()) % limit;
        };
        const int mergingIds[] = {UndoStack::nextUndoID(), UndoStack::nextUndoID()};
        std::array<std::unique_ptr<Proxy>, 3> proxies = {
            std::make_unique<Proxy>("A", boost::make_shared<Wrapped>(0)),
            std::make_unique<Proxy>("B", boost::make_shared<Wrapped>(0), mergingIds[0]),
            std::make_unique<Proxy>("C", boost::make_shared<Wrapped>(0), mergingIds[1])};
        Model model;
        const auto change = [&](bool recorded) {
            const std::size_t property = below(3);
            const int value = static_cast<int>(below(4));
            proxies[property]->setValue(value);
            model.set(property, value, recorded, property != 0);
        };
        const auto check = [&] {
            for (std::size_t i = 0; i < proxies.size(); ++i) {
                ASSERT_EQ(proxies[i]->value(), model.values[i]) << i;
            }
            ASSERT_EQ(history().count(), static_cast<int>(model.steps.size()));
            ASSERT_EQ(history().index(), static_cast<int>(model.done));
        };

        for (int operation = 0; operation < 60; ++operation) {
            switch (below(8)) {
            case 0:
            case 1:
                history().undo();
                model.undo();
                break;
            case 2:
                history().redo();
                model.redo();
                break;
            case 3: {
                const UndoStack::SuspendUndoRecording noRecording;
                change(false);
                break;
            }
            case 4: {
                {
                    const UndoStack::Macro macro(QStringLiteral("Several"));
                    model.macro.emplace();
                    for (unsigned count = below(4); count > 0; --count) {
                        change(true);
                    }
                }
                model.closeMacro();
                break;
            }
            default:
                change(true);
            }
            ASSERT_NO_FATAL_FAILURE(check()) << "operation " << operation;
        }
        while (history().canUndo()) {
            history().undo();
            model.undo();
            ASSERT_NO_FATAL_FAILURE(check());
        }
        while (history().canRedo()) {
            history().redo();
            model.redo();
            ASSERT_NO_FATAL_FAILURE(check());
        }
        history().clear();
    }
}

} // namespace
