#include <analyzer/views/ChartHover.h>
#include <analyzer/views/HoveredCase.h>
#include <analyzer/views/PointColors.h>
#include <analyzer/views/Scatter3DPlot.h>
#include <analyzer/views/ScatterPlot3DView.h>

#include <dataviews/common/views/DataViewVisitorAbstract.h>

#include <dataviews/platform/pipeline/DataPipelineManager.h>
#include <dataviews/platform/pipeline/RangeFilter.h>
#include <dataviews/platform/selection/SelectionModel.h>
#include <dataviews/platform/serialize/SerializerInterface.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <QContextMenuEvent>
#include <QDomDocument>
#include <QTest>
#include <QWheelEvent>

#include <vtkIdTypeArray.h>
#include <vtkImageData.h>

#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <limits>
#include <random>
#include <set>
#include <string>
#include <vector>

#include <tests/analyzer/views/ChartSettings.h>
#include <tests/support/SmallStudy.h>
#include <tests/support/mouseMoves.h>

namespace analyzer {

namespace {

using Cases = std::set<unsigned long long>;

/// Four cases in corners of the box and two within, one right behind the other when looking along Y.
class ScatterPlot3DViewTest : public testing::Test
{
protected:
    void SetUp() override
    {
        m_study.add("X", {0, 10, 0, 10, 5, 5}, Variable::Input)
            .add("Y", {0, 0, 10, 10, 8, 2}, Variable::Input)
            .add("Z", {0, 10, 10, 0, 5, 5})
            .add("Gaps", {0, missing, 10, 0, std::numeric_limits<double>::infinity(), 5})
            .add("Name", std::vector<std::string>{"a", "b", "a", "b", "a", "b"})
            .open();
        m_view = makeView();
        m_view->widget().show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&m_view->widget()));
        m_view->xVariable()->setValue(Project::project().variable("X"));
        m_view->yVariable()->setValue(Project::project().variable("Y"));
        m_view->zVariable()->setValue(Project::project().variable("Z"));
        UndoStack::history().clear();
        m_view->render();
        QTest::mouseMove(&m_view->widget(), emptyPlace);
    }

    void TearDown() override
    {
        m_view.reset();
        UndoStack::history().clear();
    }

    boost::shared_ptr<ScatterPlot3DView> makeView()
    {
        auto view = boost::make_shared<ScatterPlot3DView>(
            ViewServices{m_pipeline, m_master, {}, {}, m_hovered});
        view->widget().resize(500, 400);
        return view;
    }

    /// By case ID; the table has all cases.
    [[nodiscard]] QPoint place(int caseID) const { return m_view->placeOfRow(caseID - 1); }

    void click(const QPoint& point, Qt::KeyboardModifiers keys = Qt::NoModifier)
    {
        QTest::mouseMove(&m_view->widget(), point);
        QTest::mouseClick(&m_view->widget(), Qt::LeftButton, keys, point);
    }

    void drag(
        const QPoint& from,
        const QPoint& to,
        Qt::MouseButton button = Qt::LeftButton,
        Qt::KeyboardModifiers keys = Qt::NoModifier)
    {
        QWidget* widget = &m_view->widget();
        QTest::mouseMove(widget, from);
        QTest::mousePress(widget, button, keys, from);
        for (const QPoint& point : {(from + to) / 2, to}) {
            QMouseEvent move(
                QEvent::MouseMove, point, widget->mapToGlobal(point), Qt::NoButton, button, keys);
            QApplication::sendEvent(widget, &move);
        }
        QTest::mouseRelease(widget, button, keys, to);
        m_view->render();
    }

    void turnWheel(const QPoint& point, int notches)
    {
        QWheelEvent event(
            point,
            m_view->widget().mapToGlobal(point),
            QPoint(),
            QPoint(0, 120 * notches),
            Qt::NoButton,
            Qt::NoModifier,
            Qt::NoScrollPhase,
            false);
        QApplication::sendEvent(&m_view->widget(), &event);
        m_view->render();
    }

    void look(double azimuth, double elevation)
    {
        m_view->camera()->setValue({azimuth, elevation, 1.0, 0.0, 0.0});
        m_view->render();
    }

    [[nodiscard]] Cases selected() const { return m_master->getSelections(); }

    /// The rows that the chart draws as selected.
    [[nodiscard]] std::set<long long> drawn() const
    {
        std::set<long long> rows;
        vtkIdTypeArray* selection = m_view->plot().GetSelection();
        for (vtkIdType i = 0; selection != nullptr && i < selection->GetNumberOfValues(); ++i) {
            rows.insert(selection->GetValue(i));
        }
        return rows;
    }

    [[nodiscard]] static std::string stateOf(ScatterPlot3DView& view)
    {
        QDomDocument document;
        QDomElement parent = document.createElement(QStringLiteral("State"));
        document.appendChild(parent);
        view.serializer().serialize(parent);
        return document.toString().toStdString();
    }

    static void read(ScatterPlot3DView& view, const std::string& state)
    {
        QDomDocument document;
        ASSERT_TRUE(document.setContent(QString::fromStdString(state)));
        view.serializer().deserialize(document.documentElement());
    }

    static constexpr double missing = std::numeric_limits<double>::quiet_NaN();
    static constexpr QPoint emptyPlace = QPoint(30, 30);

    SmallStudy m_study{6};
    DataPipelineManager m_pipeline{Project::project()};
    boost::shared_ptr<SelectionModel> m_master = boost::make_shared<SelectionModel>();
    boost::shared_ptr<HoveredCase> m_hovered = boost::make_shared<HoveredCase>();
    boost::shared_ptr<ScatterPlot3DView> m_view;
};

} // namespace

TEST_F(ScatterPlot3DViewTest, StartsWithAnOutputOverTwoInputsOutsideUndo)
{
    UndoStack::history().clear();
    const boost::shared_ptr<ScatterPlot3DView> view = makeView();

    EXPECT_EQ(view->title(), "Gaps over Y and X") << "those with the most values first";
    EXPECT_EQ(view->domName(), "ScatterPlot3D");
    EXPECT_EQ(view->mouseModeProperty()->value(), DataViewInterface::Select);
    EXPECT_EQ(UndoStack::history().count(), 0);
}

TEST_F(ScatterPlot3DViewTest, ClickSelectsControlTogglesAndEmptySpaceClears)
{
    click(place(4));
    EXPECT_EQ(selected(), Cases({4}));
    EXPECT_EQ(drawn(), std::set<long long>({3}));

    click(place(2) + QPoint(3, 0), Qt::ControlModifier);
    EXPECT_EQ(selected(), Cases({2, 4})) << "a few pixels beside the point";
    click(place(4), Qt::ControlModifier);
    EXPECT_EQ(selected(), Cases({2}));
    click(emptyPlace, Qt::ControlModifier);
    EXPECT_EQ(selected(), Cases({2}));

    click(emptyPlace);
    EXPECT_EQ(selected(), Cases());
    EXPECT_TRUE(drawn().empty());
}

TEST_F(ScatterPlot3DViewTest, RubberBandSelectsWhatLiesInsideAndAddsWithControl)
{
    const QPoint reach(8, 8);

    drag(place(4) - reach, place(4) + reach);
    EXPECT_EQ(selected(), Cases({4}));

    // From the lower right corner to the upper left one.
    drag(place(1) + reach, place(1) - reach, Qt::LeftButton, Qt::ControlModifier);
    EXPECT_EQ(selected(), Cases({1, 4}));

    drag(QPoint(2, 2), QPoint(498, 398));
    EXPECT_EQ(selected(), Cases({1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(UndoStack::history().count(), 0) << "the camera stands still";
}

TEST_F(ScatterPlot3DViewTest, PointsInFrontCoverThoseBehindAndAreTheOnesPicked)
{
    const struct
    {
        double azimuth;
        unsigned long long front;
        unsigned long long back;
    } cases[] = {{0.0, 6, 5}, {180.0, 5, 6}};

    for (const auto& direction : cases) {
        SCOPED_TRACE(direction.azimuth);
        look(direction.azimuth, 0.0);
        const std::vector<float>& nearness = m_view->plot().points().nearness();
        ASSERT_EQ(nearness.size(), 6U);
        EXPECT_GT(nearness[direction.front - 1], nearness[direction.back - 1]);

        ASSERT_EQ(place(5), place(6));
        click(place(5));
        EXPECT_EQ(selected(), Cases({direction.front}));
    }
}

TEST_F(ScatterPlot3DViewTest, GesturesMoveTheCameraEachInOneUndoStep)
{
    const QPoint middle(250, 200);
    const auto dragWith = [&](Qt::MouseButton button, Qt::KeyboardModifiers keys) {
        return [=] { drag(middle, middle + QPoint(40, -20), button, keys); };
    };
    const auto dragLeftIn = [&](DataViewInterface::MouseMode mode) {
        return [=] {
            m_view->mouseModeProperty()->setValue(mode);
            drag(middle, middle + QPoint(40, -20));
        };
    };

    enum Change
    {
        Turned,
        Moved,
        Zoomed
    };

    const struct
    {
        const char* name;
        std::function<void()> gesture;
        Change change;
    } cases[] = {
        {"right", dragWith(Qt::RightButton, Qt::NoModifier), Turned},
        {"right with Shift", dragWith(Qt::RightButton, Qt::ShiftModifier), Moved},
        {"middle", dragWith(Qt::MiddleButton, Qt::NoModifier), Moved},
        {"left in Pan", dragLeftIn(DataViewInterface::Pan), Turned},
        {"left in Zoom", dragLeftIn(DataViewInterface::Zoom), Zoomed},
        {"wheel",
         [&] {
             turnWheel(middle, 1);
             turnWheel(middle, 1);
         },
         Zoomed}};

    m_master->setSelection({2});

    for (const auto& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        UndoStack::history().clear();
        const Chart3DCamera before = m_view->camera()->value();
        const QPoint frontBefore = place(2);

        testCase.gesture();

        const Chart3DCamera after = m_view->camera()->value();
        EXPECT_EQ(after.azimuth != before.azimuth, testCase.change == Turned);
        EXPECT_EQ(after.elevation != before.elevation, testCase.change == Turned);
        EXPECT_EQ(after.zoom > before.zoom, testCase.change == Zoomed);
        if (testCase.change == Moved) {
            EXPECT_EQ(place(2) - frontBefore, QPoint(40, -20)) << "the points follow the mouse";
        }
        EXPECT_EQ(selected(), Cases({2}));
        ASSERT_EQ(UndoStack::history().count(), 1);
        UndoStack::history().undo();
        EXPECT_EQ(m_view->camera()->value(), before);
        UndoStack::history().redo();
        EXPECT_EQ(m_view->camera()->value(), after);
        UndoStack::history().undo();
        m_view->render();
    }
}

TEST_F(ScatterPlot3DViewTest, WhatIsInFrontFollowsTheTurningMouse)
{
    look(0.0, 0.0);
    const QPoint before = place(6); // in the middle, in front of the axis

    drag(QPoint(250, 200), QPoint(270, 210), Qt::RightButton);

    EXPECT_GT(place(6).x(), before.x());
    EXPECT_GT(place(6).y(), before.y());
}

TEST_F(ScatterPlot3DViewTest, WheelKeepsWhatIsUnderTheMouse)
{
    const QPoint before = place(4);

    turnWheel(before, 3);

    EXPECT_GT(m_view->camera()->value().zoom, 1.5);
    EXPECT_LE((place(4) - before).manhattanLength(), 1);
}

TEST_F(ScatterPlot3DViewTest, RightClickAdjustsTheSelectionAndAsksForTheMenuUnlessItDrags)
{
    Cases atMenu;
    int menus = 0;
    m_view->signalContextMenuRequested.connect([&](const QPoint&) {
        ++menus;
        atMenu = selected();
    });
    m_master->setSelection({2, 4});
    QWidget* widget = &m_view->widget();

    QTest::mouseClick(widget, Qt::RightButton, Qt::NoModifier, place(4));
    EXPECT_EQ(atMenu, Cases({2, 4})) << "a selected case keeps the selection";
    QTest::mouseClick(widget, Qt::RightButton, Qt::NoModifier, place(3));
    EXPECT_EQ(atMenu, Cases({3}));
    QTest::mouseClick(widget, Qt::RightButton, Qt::NoModifier, emptyPlace);
    EXPECT_EQ(atMenu, Cases());
    EXPECT_EQ(menus, 3);

    drag(QPoint(250, 200), QPoint(300, 200), Qt::RightButton);
    QContextMenuEvent byMouse(QContextMenuEvent::Mouse, QPoint(250, 200));
    QApplication::sendEvent(widget, &byMouse);
    EXPECT_EQ(menus, 3);
    QContextMenuEvent byKey(QContextMenuEvent::Keyboard, QPoint(250, 200));
    QApplication::sendEvent(widget, &byKey);
    EXPECT_EQ(menus, 4);
}

TEST_F(ScatterPlot3DViewTest, CasesWithoutAPlaceAreLeftOutAndCounted)
{
    m_view->zVariable()->setValue(Project::project().variable("Gaps"));
    m_view->render();
    EXPECT_EQ(leftOutText(*m_view), "1 without Gaps, 1 with infinite Gaps");
    EXPECT_EQ(m_view->leftOutCaseIDs(), Cases({2, 5}));

    drag(QPoint(2, 2), QPoint(498, 398));

    EXPECT_EQ(selected(), Cases({1, 3, 4, 6}));
}

TEST_F(ScatterPlot3DViewTest, FiltersHideCasesAndLeaveTheOthersWhereTheyAre)
{
    m_master->setSelection({1, 4});
    const QPoint before = place(4);
    const auto filter = boost::make_shared<RangeFilter>(
        Project::project().variable("X"), ValueRange_s<double>{3.0, 20.0}, false);

    m_pipeline.addFilter(filter);
    m_view->render();
    EXPECT_EQ(drawn(), std::set<long long>({1})) << "case 4 is in the second row now";
    EXPECT_EQ(m_view->placeOfRow(1), before);
    EXPECT_EQ(leftOutText(*m_view), "2 filtered");

    m_pipeline.removeFilter(filter);
    EXPECT_EQ(drawn(), std::set<long long>({0, 3}));
    EXPECT_EQ(leftOutText(*m_view), "");
}

TEST_F(ScatterPlot3DViewTest, ColorsByNumbersAndByTexts)
{
    const auto colorOf = [this](int caseID) {
        m_view->render();
        const std::vector<float>& places = m_view->plot().points().places();
        const auto row = static_cast<std::size_t>(caseID - 1);
        const auto* pixel =
            static_cast<const unsigned char*>(m_view->plot().picture().image().GetScalarPointer(
                static_cast<int>(places[2 * row]), static_cast<int>(places[2 * row + 1]), 0));
        return std::vector<int>(pixel, pixel + 3);
    };
    EXPECT_EQ(colorOf(1), colorOf(2));

    settingOf(*m_view, "color").setText("Z");
    EXPECT_EQ(m_view->title(), "Z over X and Y, colored by Z");
    EXPECT_EQ(colorOf(1), colorOf(4));
    EXPECT_NE(colorOf(1), colorOf(2));
    const std::vector<int> viridis = colorOf(1);
    settingOf(*m_view, "palette").setText("coolwarm");
    EXPECT_NE(colorOf(1), viridis);

    settingOf(*m_view, "color").setText("Name");
    EXPECT_EQ(colorOf(1), colorOf(3));
    EXPECT_NE(colorOf(1), colorOf(2));
}

TEST_F(ScatterPlot3DViewTest, HoveringMakesTheCaseTheHoveredOneAndMarksThatOfOthers)
{
    settle(); // the picture's places are known to the hovering behind it
    sendMouseMove(m_view->widget(), place(3));
    settle();
    EXPECT_EQ(m_hovered->caseID(), std::optional<unsigned long long>(3));

    sendLeave(m_view->widget());
    EXPECT_FALSE(m_hovered->caseID());
    m_hovered->setCaseID(4);
    const QWidget* mark = m_view->hover().mark();
    ASSERT_TRUE(mark->isVisible());
    EXPECT_LE((mark->geometry().center() - place(4)).manhattanLength(), 2);
}

TEST_F(ScatterPlot3DViewTest, SuspendedViewStandsStillAndCatchesUpOnResume)
{
    m_view->suspend();
    m_master->setSelection({5});
    m_hovered->setCaseID(4);
    const auto filter = boost::make_shared<RangeFilter>(
        Project::project().variable("X"), ValueRange_s<double>{3.0, 20.0}, false);
    m_pipeline.addFilter(filter);
    EXPECT_TRUE(drawn().empty());
    EXPECT_FALSE(m_view->hover().mark()->isVisible());
    const Chart3DCamera before = m_view->camera()->value();
    click(place(2));
    drag(QPoint(250, 200), QPoint(300, 200), Qt::RightButton);
    turnWheel(QPoint(250, 200), 1);
    EXPECT_EQ(selected(), Cases({5}));
    EXPECT_EQ(m_view->camera()->value(), before);

    m_view->resume();
    EXPECT_EQ(drawn(), std::set<long long>({2})) << "case 5 is in the third row of four";
}

TEST_F(ScatterPlot3DViewTest, StateReadByAnotherViewIsWrittenAgainAsItWas)
{
    settingOf(*m_view, "x").setText("Gaps");
    settingOf(*m_view, "color").setText("Y");
    settingOf(*m_view, "palette").setText("cividis");
    settingOf(*m_view, "color-range").setText("own");
    settingOf(*m_view, "color-min").setText("0.1");
    settingOf(*m_view, "legend").setText("off");
    settingOf(*m_view, "point-size").setText("11");
    settingOf(*m_view, "opacity").setText("35");
    settingOf(*m_view, "mouse-mode").setText("zoom");
    m_view->camera()->setValue({1.0 / 3.0, -0.1, 4.0 / 3.0, 0.7e-9, -1.0 / 7.0});
    const std::string state = stateOf(*m_view);
    const boost::shared_ptr<ScatterPlot3DView> other = makeView();
    ASSERT_NE(stateOf(*other), state);

    {
        const UndoStack::SuspendUndoRecording noRecording;
        read(*other, state);
    }

    EXPECT_EQ(stateOf(*other), state);
    EXPECT_EQ(other->camera()->value(), m_view->camera()->value());
}

TEST_F(ScatterPlot3DViewTest, RefusesDirectionsThatCannotBeDrawn)
{
    EXPECT_EQ(
        refusalOf(*m_view, "elevation", "91"), "The elevation must be from -90 to 90, not 91.");
    EXPECT_EQ(refusalOf(*m_view, "zoom", "0"), "The zoom must be from 0.1 to 100, not 0.");
    EXPECT_EQ(refusalOf(*m_view, "azimuth", "45"), "");
    std::string state = stateOf(*m_view);
    const std::string azimuth = "<Azimuth>45</Azimuth>";
    ASSERT_NE(state.find(azimuth), std::string::npos);
    state.replace(state.find(azimuth), azimuth.size(), "<Azimuth>nan</Azimuth>");

    EXPECT_ANY_THROW(read(*m_view, state));

    EXPECT_EQ(m_view->camera()->value().azimuth, 45.0);
}

TEST_F(ScatterPlot3DViewTest, FitAndResetsBringTheCameraBack)
{
    const Chart3DCamera turned{77.0, -20.0, 3.0, 0.5, 0.25};
    m_view->camera()->setValue(turned);

    m_view->resetXAxis();
    EXPECT_EQ(m_view->camera()->value(), (Chart3DCamera{30.0, -20.0, 3.0, 0.0, 0.25}));
    m_view->resetYAxis();
    EXPECT_EQ(m_view->camera()->value(), (Chart3DCamera{30.0, 25.0, 3.0, 0.0, 0.0}));
    m_view->render();
    const QPoint near = place(4);
    m_view->fitData();
    EXPECT_EQ(m_view->camera()->value(), Chart3DCamera());
    EXPECT_EQ(place(4), near) << "painted later, together with what else changes";
    QCoreApplication::sendPostedEvents();
    EXPECT_NE(place(4), near);
    UndoStack::history().undo();
    EXPECT_EQ(m_view->camera()->value().zoom, 3.0);
}

TEST_F(ScatterPlot3DViewTest, AnotherStudyLeavesNothingToDrawAndNothingToPick)
{
    m_master->setSelection({2});
    m_hovered->setCaseID(2);
    const QPoint before = place(2);

    SmallStudy other(2);
    other.add("Other", {1, 2}).open();
    m_view->render();

    EXPECT_FALSE(m_view->plot().GetVisible());
    EXPECT_EQ(leftOutText(*m_view), "");
    click(before);
    drag(QPoint(2, 2), QPoint(498, 398));
    EXPECT_EQ(selected(), Cases({2})) << "there is nothing that could have been picked";
    settingOf(*m_view, "x").setText("Other");
    settingOf(*m_view, "y").setText("Other");
    settingOf(*m_view, "z").setText("Other");
    m_view->render();
    EXPECT_TRUE(m_view->plot().GetVisible());
    EXPECT_EQ(drawn(), std::set<long long>({1}));
}

TEST_F(ScatterPlot3DViewTest, VeryManyPointsAreAllThereInTheEnd)
{
    constexpr std::size_t count = 450000;
    std::mt19937 random(5);
    std::uniform_real_distribution<double> share(0.0, 1.0);
    SmallStudy many{count};
    for (const char* name : {"X", "Y", "Z"}) {
        std::vector<double> values(count);
        std::generate(values.begin(), values.end(), [&] { return share(random); });
        many.add(name, values);
    }
    many.open();
    m_view = makeView();
    m_view->widget().show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&m_view->widget()));
    const auto refined = [this] { return !m_view->plot().isUnrefined(); };
    ASSERT_TRUE(QTest::qWaitFor(refined));
    const auto pixels = [this] {
        const PixelPicture& picture = m_view->plot().picture().pixels();
        return std::vector<std::uint32_t>(
            picture.row(0), picture.row(0) + picture.stride() * picture.height());
    };

    // One change while points are being added to the last one.
    for (const double azimuth : {30.0, 60.0}) {
        m_view->camera()->setValue({azimuth, 20.0, 1.0, 0.0, 0.0});
        QCoreApplication::sendPostedEvents();
        EXPECT_FALSE(refined());
    }
    const std::vector<std::uint32_t> first = pixels();
    ASSERT_TRUE(QTest::qWaitFor(refined));
    const std::vector<std::uint32_t> last = pixels();
    m_view->camera()->setValue({31.0, 20.0, 1.0, 0.0, 0.0});
    m_view->camera()->setValue({60.0, 20.0, 1.0, 0.0, 0.0});
    m_view->render();

    EXPECT_NE(first, last);
    EXPECT_TRUE(refined());
    EXPECT_EQ(pixels(), last);

    Cases all;
    for (unsigned long long caseID = 1; caseID <= count; ++caseID) {
        all.insert(all.end(), caseID);
    }
    m_master->setSelection(all);
    QCoreApplication::sendPostedEvents();
    EXPECT_FALSE(refined());
    ASSERT_TRUE(QTest::qWaitFor(refined));
    m_master->setSelection({1});
    QCoreApplication::sendPostedEvents();
    EXPECT_TRUE(refined());
}

TEST_F(ScatterPlot3DViewTest, TellsAVisitorItsKind)
{
    class Visitor : public DataViewVisitorAbstract
    {
    public:
        using DataViewVisitorAbstract::visit;

        void visit(boost::shared_ptr<ScatterPlot3DInterface> view) override
        {
            found = std::move(view);
        }

        boost::shared_ptr<ScatterPlot3DInterface> found;
    };

    Visitor visitor;

    m_view->accept(visitor);

    EXPECT_EQ(visitor.found, m_view);
}

} // namespace analyzer
