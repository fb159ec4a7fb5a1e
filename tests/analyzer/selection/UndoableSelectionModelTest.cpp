#include <analyzer/selection/UndoableSelectionModel.h>

#include <dataviews/platform/undo/GenericUndoCommand.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWidget>

#include <boost/function.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <tests/support/mouseMoves.h>

namespace {

using analyzer::SelectionChange;
using analyzer::UndoableSelectionModel;
using testing::ElementsAre;
using Cases = std::set<unsigned long long>;

/// Calls back on each input that it gets.
class InputWidget : public QWidget
{
public:
    using QWidget::QWidget;

    boost::function<void()> reaction;
    bool ignoresInput = false;

protected:
    bool event(QEvent* event) override
    {
        switch (event->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
        case QEvent::MouseMove:
        case QEvent::MouseButtonRelease:
        case QEvent::KeyPress:
            if (reaction) {
                reaction();
            }
            event->setAccepted(!ignoresInput);
            return true;
        default:
            return QWidget::event(event);
        }
    }
};

class UndoableSelectionModelTest : public testing::Test
{
protected:
    UndoableSelectionModelTest()
    {
        UndoStack::history().clear();
        m_widget.setMouseTracking(true); // else moves without a button do not reach it
    }

    ~UndoableSelectionModelTest() override { UndoStack::history().clear(); }

    /// Sends a mouse event, to which the widget reacts by selecting \p cases.
    void mouse(
        QEvent::Type type,
        Qt::MouseButton button,
        Qt::MouseButtons buttons,
        const Cases& cases,
        QWidget* receiver = nullptr)
    {
        QMouseEvent event(type, QPoint(5, 5), QPoint(5, 5), button, buttons, Qt::NoModifier);
        event.setTimestamp(++m_time);
        m_widget.reaction = [this, cases] { m_model.setSelection(cases); };
        QApplication::sendEvent(receiver == nullptr ? &m_widget : receiver, &event);
    }

    void press(const Cases& cases)
    {
        mouse(QEvent::MouseButtonPress, Qt::LeftButton, Qt::LeftButton, cases);
    }

    void drag(const Cases& cases) { mouse(QEvent::MouseMove, Qt::NoButton, Qt::LeftButton, cases); }

    void release(const Cases& cases)
    {
        mouse(QEvent::MouseButtonRelease, Qt::LeftButton, Qt::NoButton, cases);
    }

    void key(QEvent::Type type, int code, bool repeats, const Cases& cases)
    {
        QKeyEvent event(type, code, Qt::NoModifier, QString(), repeats);
        event.setTimestamp(++m_time);
        m_widget.reaction = [this, cases] { m_model.setSelection(cases); };
        QApplication::sendEvent(&m_widget, &event);
    }

    [[nodiscard]] static std::vector<std::string> texts()
    {
        std::vector<std::string> result;
        for (int i = 0; i < UndoStack::history().count(); ++i) {
            result.push_back(UndoStack::history().text(i).toStdString());
        }
        return result;
    }

    /// The selection now and after each undo, down to the beginning.
    [[nodiscard]] std::vector<Cases> undoAll()
    {
        std::vector<Cases> result{m_model.getSelections()};
        while (UndoStack::history().canUndo()) {
            UndoStack::history().undo();
            result.push_back(m_model.getSelections());
        }
        return result;
    }

    unsigned long m_time = 0;
    InputWidget m_widget;
    UndoableSelectionModel m_model;
};

TEST_F(UndoableSelectionModelTest, NamesEachChangeAndTakesItBack)
{
    Cases many;
    for (unsigned long long id = 1; id <= 1204; ++id) {
        many.insert(id * 3);
    }
    std::vector<std::size_t> told;
    m_model.signalSelectionChanged.connect(
        [&told](const Cases& cases) { told.push_back(cases.size()); });

    m_model.setSelection({});
    m_model.setSelection({8});
    m_model.takeSelection({8});
    m_model.setSelection(many);
    m_model.takeSelection({});

    EXPECT_THAT(texts(), ElementsAre("Select 1 Case", "Select 1,204 Cases", "Clear Selection"));
    EXPECT_THAT(undoAll(), ElementsAre(Cases(), many, Cases{8}, Cases()));
    UndoStack::history().redo();
    UndoStack::history().redo();
    EXPECT_EQ(m_model.getSelections(), many);
    EXPECT_THAT(told, ElementsAre(1, 1204, 0, 1204, 1, 0, 1, 1204));
}

TEST_F(UndoableSelectionModelTest, GestureIsOneEntry)
{
    m_model.setSelection({1});
    m_model.setSelection({2});

    press({3});
    drag({3, 4});
    drag({3, 4, 5});
    release({3, 4, 5, 6}); // also what the release does
    release({3, 4, 5, 6}); // as a parent would get it
    press({7});
    release({7});
    settle(); // no gesture any more
    m_model.setSelection({8});
    m_model.setSelection({9});

    EXPECT_THAT(
        texts(),
        ElementsAre(
            "Select 1 Case",
            "Select 1 Case",
            "Select 4 Cases",
            "Select 1 Case",
            "Select 1 Case",
            "Select 1 Case"));
    EXPECT_THAT(
        undoAll(),
        ElementsAre(Cases{9}, Cases{8}, Cases{7}, Cases{3, 4, 5, 6}, Cases{2}, Cases{1}, Cases{}));
    UndoStack::history().setIndex(3);
    EXPECT_EQ(m_model.getSelections(), (Cases{3, 4, 5, 6}));
}

TEST_F(UndoableSelectionModelTest, GestureThatEndsWhereItBeganLeavesNoEntry)
{
    m_model.setSelection({1, 2});
    press({});
    drag({3});
    release({1, 2});
    EXPECT_THAT(texts(), ElementsAre("Select 2 Cases"));

    settle();
    m_model.setSelection({3});
    m_model.setSelection({1, 2});
    EXPECT_EQ(UndoStack::history().count(), 3) << "no gesture: both count";
}

TEST_F(UndoableSelectionModelTest, GesturesEndWithTheNextInput)
{
    m_model.setSelection({100});
    const boost::function<void()> ends[] = {
        [this] { mouse(QEvent::MouseMove, Qt::NoButton, Qt::NoButton, {2}); },
        [this] { key(QEvent::KeyPress, Qt::Key_A, false, {2}); },
        [this] { mouse(QEvent::MouseButtonDblClick, Qt::LeftButton, Qt::LeftButton, {2}); },
    };

    for (const boost::function<void()>& end : ends) {
        UndoStack::history().clear();
        press({1});
        release({1, 5});
        end();
        EXPECT_THAT(texts(), ElementsAre("Select 2 Cases", "Select 1 Case"));
    }
}

TEST_F(UndoableSelectionModelTest, LostReleaseDoesNotJoinGestures)
{
    press({1});
    press({2});
    EXPECT_EQ(UndoStack::history().count(), 2);
    mouse(QEvent::MouseMove, Qt::NoButton, Qt::NoButton, {3});
    EXPECT_EQ(UndoStack::history().count(), 3);
}

TEST_F(UndoableSelectionModelTest, AllButtonsBelongToTheGestureOfTheFirst)
{
    const Qt::MouseButtons both = Qt::LeftButton | Qt::RightButton;

    press({1});
    mouse(QEvent::MouseButtonPress, Qt::RightButton, both, {2});
    mouse(QEvent::MouseButtonRelease, Qt::LeftButton, Qt::RightButton, {3});
    key(QEvent::KeyPress, Qt::Key_Escape, false, {4});
    settle();
    mouse(QEvent::MouseButtonRelease, Qt::RightButton, Qt::NoButton, {5, 6});

    EXPECT_THAT(texts(), ElementsAre("Select 2 Cases"));
}

TEST_F(UndoableSelectionModelTest, PressThatParentsGetTooIsOne)
{
    auto* child = new InputWidget(&m_widget);
    child->ignoresInput = true;
    child->reaction = [this] { m_model.setSelection({50}); };

    mouse(QEvent::MouseButtonPress, Qt::LeftButton, Qt::LeftButton, {51, 52}, child);

    EXPECT_EQ(m_model.getSelections(), (Cases{51, 52}));
    EXPECT_THAT(texts(), ElementsAre("Select 2 Cases"));
}

TEST_F(UndoableSelectionModelTest, KeyHeldDownIsOneEntry)
{
    key(QEvent::KeyPress, Qt::Key_Down, false, {1});
    key(QEvent::KeyPress, Qt::Key_Down, true, {1, 2});
    key(QEvent::KeyRelease, Qt::Key_Down, true, {});
    key(QEvent::KeyPress, Qt::Key_Down, true, {1, 2, 3});
    key(QEvent::KeyRelease, Qt::Key_Down, false, {});
    settle();
    --m_time; // the release and this press come at the same moment: the key is held down still
    key(QEvent::KeyPress, Qt::Key_Down, false, {1, 2, 3, 4});
    key(QEvent::KeyRelease, Qt::Key_Down, false, {});
    key(QEvent::KeyPress, Qt::Key_Down, false, {4});
    key(QEvent::KeyPress, Qt::Key_Up, false, {5, 6});

    EXPECT_THAT(texts(), ElementsAre("Select 4 Cases", "Select 1 Case", "Select 2 Cases"));
}

TEST_F(UndoableSelectionModelTest, OtherChangesWithinAGestureStayInOrder)
{
    const DeleteSignaler owner;
    const int id = UndoStack::nextUndoID();
    int zoom = 0;
    const auto setZoom = [&](int value) {
        UndoStack::push(std::make_unique<GenericUndoCommand>(
            [&zoom, value] { zoom = value; },
            [&zoom, old = zoom] { zoom = old; },
            owner,
            QStringLiteral("Change Zoom"),
            id));
    };

    setZoom(1);
    setZoom(2);
    press({1});
    setZoom(3);
    setZoom(4);
    release({2, 3});

    EXPECT_THAT(
        texts(), ElementsAre("Change Zoom", "Select 1 Case", "Change Zoom", "Select 2 Cases"));
    UndoStack::history().setIndex(2);
    EXPECT_EQ(zoom, 2);
    EXPECT_EQ(m_model.getSelections(), Cases{1});
}

TEST_F(UndoableSelectionModelTest, RecordsNothingWhileSuspendedOrUndoing)
{
    m_model.setSelection({1});
    {
        const UndoStack::SuspendUndoRecording noRecording;
        m_model.setSelection({2});
    }
    EXPECT_EQ(UndoStack::history().count(), 1);
    m_model.setSelection({3});
    const boost::signals2::scoped_connection connection =
        m_model.signalSelectionChanged.connect([this](const Cases& cases) {
            if (cases == Cases{2}) {
                m_model.setSelection({40, 41});
            }
        });

    UndoStack::history().undo();

    EXPECT_EQ(m_model.getSelections(), (Cases{40, 41}));
    EXPECT_EQ(UndoStack::history().count(), 2);
    m_model.setSelection({5});
    EXPECT_THAT(undoAll(), ElementsAre(Cases{5}, Cases{40, 41}, Cases{}));
}

TEST_F(UndoableSelectionModelTest, UndoToWhatIsSelectedAlreadyTellsNobody)
{
    m_model.setSelection({1});
    m_model.setSelection({2});
    {
        const UndoStack::SuspendUndoRecording noRecording;
        m_model.setSelection({1});
    }
    int told = 0;
    m_model.signalSelectionChanged.connect([&told](const Cases&) { ++told; });

    UndoStack::history().undo();
    EXPECT_EQ(told, 0);

    m_model.setSelection({4});
    EXPECT_THAT(undoAll(), ElementsAre(Cases{4}, Cases{1}, Cases{}));
}

TEST_F(UndoableSelectionModelTest, ChangeByAListenerComesBehindTheOneItHeardOf)
{
    m_model.signalSelectionChanged.connect([this](const Cases& cases) {
        if (cases == Cases{1}) {
            m_model.setSelection({2});
        }
        if (cases == Cases{3}) {
            throw std::runtime_error("a listener fails");
        }
    });

    m_model.setSelection({1});
    EXPECT_THROW(m_model.setSelection({3}), std::runtime_error);

    EXPECT_EQ(UndoStack::history().count(), 3) << "also the change that failed further on";
    UndoStack::history().undo();
    EXPECT_EQ(m_model.getSelections(), Cases{2});
}

TEST_F(UndoableSelectionModelTest, EntriesOfADeadModelDoNothing)
{
    {
        UndoableSelectionModel model;
        model.setSelection({1});
        model.setSelection({2});
    }
    UndoStack::history().undo();
    UndoStack::history().redo();
    EXPECT_EQ(m_model.getSelections(), Cases());
}

TEST_F(UndoableSelectionModelTest, ThousandEntriesOverAMillionCasesTakeLessThan256MiB)
{
    constexpr int entryCount = 1000;
    constexpr unsigned long long caseCount = 1000000;
    constexpr unsigned long long step =
        125; // already so scattered that half of all would take no more
    for (int entry = 0; entry < entryCount; ++entry) {
        Cases cases{1};
        for (unsigned long long id = 2 + static_cast<unsigned>(entry) % step; id < caseCount;
             id += step) {
            cases.insert(cases.end(), id);
        }
        cases.insert(caseCount);
        m_model.takeSelection(std::move(cases));
    }

    ASSERT_EQ(UndoStack::history().count(), entryCount);
    std::size_t bytes = 0;
    std::set<const CaseSet*> counted;
    for (int entry = 0; entry < entryCount; ++entry) {
        const auto* change =
            dynamic_cast<const SelectionChange*>(UndoStack::history().command(entry));
        ASSERT_NE(change, nullptr);
        bytes += sizeof(SelectionChange);
        for (const SelectionChange::Cases& cases : {change->before(), change->after()}) {
            bytes += counted.insert(cases.get()).second ? cases->byteCount() : 0;
        }
    }
    EXPECT_EQ(counted.size(), entryCount + 1U);
    EXPECT_LT(bytes, 256ULL << 20U);
    EXPECT_GT(bytes, 100ULL << 20U) << "not the sets that take most";
}

TEST_F(UndoableSelectionModelTest, RandomOperationsFollowAListOfSelections)
{
    std::mt19937 random(11);
    const auto below = [&random](unsigned end) { return static_cast<int>(random() % end); };
    const auto someCases = [&] {
        Cases cases;
        for (int left = below(4); left > 0; --left) {
            cases.insert(static_cast<unsigned>(below(6)));
        }
        return cases;
    };
    std::vector<Cases> history{{}};
    std::size_t now = 0;
    const auto change = [&](const Cases& cases) {
        if (cases != history[now]) {
            history.resize(++now);
            history.push_back(cases);
        }
    };
    Cases told;
    m_model.signalSelectionChanged.connect([&told](const Cases& cases) { told = cases; });

    for (int step = 0; step < 5000; ++step) {
        SCOPED_TRACE(step);
        switch (below(5)) {
        case 0:
            UndoStack::history().undo();
            now -= now > 0 ? 1 : 0;
            break;
        case 1:
            UndoStack::history().redo();
            now += now + 1 < history.size() ? 1 : 0;
            break;
        case 2: { // a gesture
            const std::size_t begin = now;
            std::vector<Cases> steps;
            for (int left = 1 + below(4); left > 0; --left) {
                steps.push_back(someCases());
            }
            press(steps.front());
            for (const Cases& cases : steps) {
                drag(cases);
            }
            release(steps.back());
            settle();
            bool changed = false;
            for (const Cases& cases : steps) {
                changed = changed || cases != history[begin];
            }
            if (changed) {
                history.resize(begin + 1); // nothing to redo, even if it ends where it began
                change(steps.back());
            }
            break;
        }
        case 3: {
            Cases cases = someCases();
            change(cases);
            m_model.takeSelection(std::move(cases));
            break;
        }
        default: {
            const Cases cases = someCases();
            change(cases);
            m_model.setSelection(cases);
        }
        }
        ASSERT_EQ(m_model.getSelections(), history[now]);
        ASSERT_EQ(told, history[now]);
        ASSERT_EQ(UndoStack::history().index(), static_cast<int>(now));
        ASSERT_EQ(UndoStack::history().count(), static_cast<int>(history.size()) - 1);
    }
}

} // namespace
