#include <analyzer/views/PointColors.h>
#include <analyzer/views/ScatterPlotView.h>

#include <dataviews/common/charts/ChartXY.h>
#include <dataviews/common/views/DataViewVisitorAbstract.h>

#include <dataviews/platform/pipeline/DataPipelineManager.h>
#include <dataviews/platform/pipeline/RangeFilter.h>
#include <dataviews/platform/selection/SelectionModel.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <QContextMenuEvent>
#include <QTest>

#include <vtkAxis.h>
#include <vtkCommand.h>
#include <vtkContextScene.h>
#include <vtkIdTypeArray.h>
#include <vtkPlotPoints.h>
#include <vtkRenderWindow.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkSmartPointer.h>

#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

#include <limits>
#include <set>

#include <tests/support/SmallStudy.h>

namespace {

using Cases = std::set<unsigned long long>;
using analyzer::ScatterPlotView;

/// Counts the pictures that a view draws.
class PictureCounter
{
public:
    explicit PictureCounter(ScatterPlotView& view)
        : m_window(static_cast<QVTKOpenGLNativeWidget&>(view.widget()).renderWindow())
        , m_tag(m_window->AddObserver(vtkCommand::EndEvent, this, &PictureCounter::count))
    {}

    PictureCounter(const PictureCounter&) = delete;
    PictureCounter& operator=(const PictureCounter&) = delete;

    ~PictureCounter() { m_window->RemoveObserver(m_tag); }

    int pictures = 0;

private:
    void count() { ++pictures; }

    vtkSmartPointer<vtkRenderWindow> m_window;
    unsigned long m_tag;
};

/// Five cases on a diagonal, far enough apart to be clicked on one by one, in a chart in a window.
class ScatterPlotViewTest : public testing::Test
{
protected:
    void SetUp() override
    {
        constexpr double missing = std::numeric_limits<double>::quiet_NaN();
        m_study.add("Speed", {1, 2, 3, 4, 5}, Variable::Input)
            .add("Drag", {1, 2, 3, 4, 5})
            .add("Far", {1e6 + 1, 1e6 + 2, 1e6 + 3, 1e6 + 4, 1e6 + 5})
            .add("Gaps", {1, missing, 3, missing, 5})
            .add("Name", std::vector<std::string>{"a", "b", "c", "d", "e"})
            .open();
        makeView();
    }

    void TearDown() override
    {
        m_view.reset();
        UndoStack::history().clear();
    }

    void makeView()
    {
        m_view = boost::make_shared<ScatterPlotView>(
            analyzer::ViewServices{m_pipeline, m_master, {}, {}, {}});
        m_view->widget().resize(500, 400);
        m_view->widget().show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&m_view->widget()));
        // Room around the points: those in the corners of a fitted chart are hard to hit.
        showRange(0, 6);
        QTest::mouseMove(&m_view->widget(), QPoint(250, 200));
    }

    void showRange(double min, double max)
    {
        for (const int index : {vtkAxis::BOTTOM, vtkAxis::LEFT}) {
            m_view->chart().GetAxis(index)->SetRange(min, max);
        }
        m_view->render();
    }

    /// By case ID.
    [[nodiscard]] QPoint place(int caseID) const { return m_view->placeOfRow(caseID - 1); }

    void click(
        const QPoint& point,
        Qt::KeyboardModifiers keys = Qt::NoModifier,
        Qt::MouseButton button = Qt::LeftButton)
    {
        QTest::mouseMove(&m_view->widget(), point);
        QTest::mouseClick(&m_view->widget(), button, keys, point);
    }

    void drag(const QPoint& from, const QPoint& to, Qt::KeyboardModifiers keys = Qt::NoModifier)
    {
        QWidget* widget = &m_view->widget();
        QTest::mouseMove(widget, from);
        QTest::mousePress(widget, Qt::LeftButton, keys, from);
        for (const QPoint& point : {(from + to) / 2, to}) {
            QMouseEvent move(
                QEvent::MouseMove,
                point,
                widget->mapToGlobal(point),
                Qt::NoButton,
                Qt::LeftButton,
                keys);
            QApplication::sendEvent(widget, &move);
        }
        QTest::mouseRelease(widget, Qt::LeftButton, keys, to);
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

    static constexpr QPoint emptyPlace = QPoint(120, 60);

    SmallStudy m_study{5};
    DataPipelineManager m_pipeline{Project::project()};
    boost::shared_ptr<SelectionModel> m_master = boost::make_shared<SelectionModel>();
    boost::shared_ptr<ScatterPlotView> m_view;
};

} // namespace

TEST_F(ScatterPlotViewTest, StartsInSelectModeOutsideUndo)
{
    EXPECT_EQ(m_view->mouseModeProperty()->value(), DataViewInterface::Select);
    EXPECT_EQ(UndoStack::history().count(), 0);
    EXPECT_EQ(m_view->title(), "Drag over Speed");
    EXPECT_EQ(m_view->domName(), "ScatterPlot2D");
}

TEST_F(ScatterPlotViewTest, ClickSelectsThePointUnderTheMouseAlone)
{
    m_master->setSelection({2, 4, 5});

    click(place(4)); // one of several selected ones
    EXPECT_EQ(selected(), Cases({4}));
    EXPECT_EQ(drawn(), std::set<long long>({3}));

    click(place(1));
    EXPECT_EQ(selected(), Cases({1}));
}

TEST_F(ScatterPlotViewTest, ClickOnEmptySpaceClears)
{
    m_master->setSelection({2, 4});

    click(emptyPlace);

    EXPECT_EQ(selected(), Cases());
    EXPECT_TRUE(drawn().empty());
}

TEST_F(ScatterPlotViewTest, ControlClickTogglesOneCaseAndKeepsTheOthers)
{
    m_master->setSelection({2, 4, 5});

    click(place(4), Qt::ControlModifier);
    EXPECT_EQ(selected(), Cases({2, 5}));
    EXPECT_EQ(drawn(), std::set<long long>({1, 4}));

    click(place(1), Qt::ControlModifier);
    EXPECT_EQ(selected(), Cases({1, 2, 5}));

    click(emptyPlace, Qt::ControlModifier);
    EXPECT_EQ(selected(), Cases({1, 2, 5}));
    EXPECT_EQ(drawn(), std::set<long long>({0, 1, 4}))
        << "the chart shows the whole selection again";
}

TEST_F(ScatterPlotViewTest, QuickSecondClickIsAClick)
{
    QWidget* widget = &m_view->widget();
    click(place(3), Qt::ControlModifier);
    ASSERT_EQ(selected(), Cases({3}));

    // What a second click within the double-click interval sends.
    QTest::mouseDClick(widget, Qt::LeftButton, Qt::ControlModifier, place(3));
    EXPECT_EQ(selected(), Cases());
    QTest::mouseRelease(widget, Qt::LeftButton, Qt::ControlModifier, place(3));
    EXPECT_EQ(selected(), Cases());
}

TEST_F(ScatterPlotViewTest, RubberBandSelectsWhatLiesInsideAndAddsWithControl)
{
    const QPoint reach(12, -12);

    drag(place(2) - reach, place(3) + reach);
    EXPECT_EQ(selected(), Cases({2, 3}));

    drag(place(4) - reach, place(5) + reach, Qt::ControlModifier);
    EXPECT_EQ(selected(), Cases({2, 3, 4, 5}));

    // All of it is selected already: several cases are never taken out by a band.
    drag(place(3) - reach, place(4) + reach, Qt::ControlModifier);
    EXPECT_EQ(selected(), Cases({2, 3, 4, 5}));
    EXPECT_EQ(drawn(), std::set<long long>({1, 2, 3, 4}));
}

TEST_F(ScatterPlotViewTest, RightClickKeepsASelectedCaseReplacesByAnotherAndClearsOnEmptySpace)
{
    int menus = 0;
    m_view->signalContextMenuRequested.connect([&menus](const QPoint&) { ++menus; });
    for (const DataViewInterface::MouseMode mode :
         {DataViewInterface::Select, DataViewInterface::Pan, DataViewInterface::Zoom}) {
        SCOPED_TRACE(mode);
        m_view->mouseModeProperty()->setValue(mode);
        m_master->setSelection({2, 4});
        int notifications = 0;
        const boost::signals2::scoped_connection connection =
            m_master->signalSelectionChanged.connect(
                [&notifications](const Cases&) { ++notifications; });

        click(place(4), Qt::NoModifier, Qt::RightButton);
        EXPECT_EQ(selected(), Cases({2, 4}));
        EXPECT_EQ(notifications, 0);

        click(place(3), Qt::NoModifier, Qt::RightButton);
        EXPECT_EQ(selected(), Cases({3}));
        EXPECT_EQ(notifications, 1);

        click(emptyPlace, Qt::NoModifier, Qt::RightButton);
        EXPECT_EQ(selected(), Cases());
        EXPECT_EQ(notifications, 2);
    }
    QContextMenuEvent menuEvent(QContextMenuEvent::Mouse, emptyPlace);
    QApplication::sendEvent(&m_view->widget(), &menuEvent);
    EXPECT_EQ(menus, 1);
}

TEST_F(ScatterPlotViewTest, RightClickFindsCasesFarFromZero)
{
    m_view->xVariable()->setValue(Project::project().variable("Far"));
    m_view->yVariable()->setValue(Project::project().variable("Far"));
    m_view->render();
    showRange(1e6, 1e6 + 6);

    for (const int caseID : {2, 5}) {
        click(place(caseID), Qt::NoModifier, Qt::RightButton);
        EXPECT_EQ(selected(), Cases({static_cast<unsigned long long>(caseID)}));
    }
    click(place(3));
    EXPECT_EQ(selected(), Cases({3}));
}

TEST_F(ScatterPlotViewTest, PanAndZoomLeaveTheSelectionAlone)
{
    m_master->setSelection({2, 4});
    vtkAxis* bottom = m_view->chart().GetAxis(vtkAxis::BOTTOM);

    m_view->mouseModeProperty()->setValue(DataViewInterface::Pan);
    drag(QPoint(200, 200), QPoint(260, 200));
    EXPECT_LT(bottom->GetMinimum(), -0.1);
    EXPECT_EQ(selected(), Cases({2, 4}));

    m_view->mouseModeProperty()->setValue(DataViewInterface::Zoom);
    const double before = bottom->GetMaximum() - bottom->GetMinimum();
    click(QPoint(250, 200));
    EXPECT_EQ(bottom->GetMaximum() - bottom->GetMinimum(), before) << "a click zooms into nothing";
    drag(QPoint(200, 150), QPoint(300, 250));
    EXPECT_LT(bottom->GetMaximum() - bottom->GetMinimum(), before / 2);
    EXPECT_EQ(selected(), Cases({2, 4}));
}

TEST_F(ScatterPlotViewTest, ChangesByTheProgramArePaintedOnce)
{
    const auto settle = [] { QTest::qWait(150); };
    settle(); // what the window still had to paint
    PictureCounter counter(*m_view);

    m_master->setSelection({1, 2});
    EXPECT_EQ(counter.pictures, 0) << "painting is for the event loop";
    settle();
    EXPECT_EQ(counter.pictures, 1);

    m_view->chart().GetAxis(vtkAxis::BOTTOM)->SetMinimum(-1.0);
    m_view->chart().GetAxis(vtkAxis::LEFT)->SetMaximum(9.0);
    settle();
    EXPECT_EQ(counter.pictures, 2);

    m_master->setSelection({1, 2}); // no change
    settle();
    EXPECT_EQ(counter.pictures, 2);
}

TEST_F(ScatterPlotViewTest, UndoOfVariableChoicesEndsWithTheFirstOnes)
{
    m_view->xVariable()->setValue(Project::project().variable("Far"));
    ASSERT_EQ(UndoStack::history().count(), 1);
    EXPECT_EQ(UndoStack::history().undoText(), QStringLiteral("Change X Variable"));
    EXPECT_EQ(m_view->title(), "Drag over Far");

    UndoStack::history().undo();
    EXPECT_EQ(m_view->title(), "Drag over Speed");
    UndoStack::history().redo();
    EXPECT_EQ(m_view->title(), "Drag over Far");
}

TEST_F(ScatterPlotViewTest, HandleWithoutVariableDrawsNothingAndSelectsNothing)
{
    m_master->setSelection({2});
    m_view->yVariable()->setValue(WeakPtr<Variable>());
    m_view->render();

    EXPECT_FALSE(m_view->plot().GetVisible());
    click(QPoint(250, 200), Qt::NoModifier, Qt::RightButton);
    EXPECT_EQ(selected(), Cases());

    UndoStack::history().undo();
    EXPECT_TRUE(m_view->plot().GetVisible());
    m_master->setSelection({4});
    EXPECT_EQ(drawn(), std::set<long long>({3}));
}

TEST_F(ScatterPlotViewTest, MissingValuesAreNotDrawnAndNotPicked)
{
    m_view->yVariable()->setValue(Project::project().variable("Gaps"));
    m_view->render();
    showRange(0, 6);

    drag(QPoint(80, 60), QPoint(470, 340));

    EXPECT_EQ(selected(), Cases({1, 3, 5}));
}

TEST_F(ScatterPlotViewTest, FiltersChangeTheRowsAndTheSelectionFollows)
{
    m_master->setSelection({2, 4});
    const auto filter = boost::make_shared<RangeFilter>(
        Project::project().variable("Speed"), ValueRange_s<double>{3.0, 9.0}, false);

    m_pipeline.addFilter(filter);
    m_view->render();
    EXPECT_EQ(drawn(), std::set<long long>({1})) << "case 4 is in the second row now";

    m_pipeline.removeFilter(filter);
    EXPECT_EQ(drawn(), std::set<long long>({1, 3}));
}

TEST_F(ScatterPlotViewTest, FitAndResetsCoverTheDataAndKeepTheOtherAxis)
{
    vtkAxis* bottom = m_view->chart().GetAxis(vtkAxis::BOTTOM);
    vtkAxis* left = m_view->chart().GetAxis(vtkAxis::LEFT);
    bottom->SetRange(2, 3);
    left->SetRange(2, 3);

    m_view->resetXAxis();
    EXPECT_LE(bottom->GetMinimum(), 1.0);
    EXPECT_GE(bottom->GetMaximum(), 5.0);
    EXPECT_EQ(left->GetMinimum(), 2.0);
    EXPECT_EQ(left->GetMaximum(), 3.0);

    m_view->fitData();
    EXPECT_LE(left->GetMinimum(), 1.0);
    EXPECT_GE(left->GetMaximum(), 5.0);
}

TEST_F(ScatterPlotViewTest, SuspendedViewStandsStillAndCatchesUpOnResume)
{
    m_view->suspend();
    m_master->setSelection({5});
    EXPECT_TRUE(drawn().empty());
    click(place(2));
    EXPECT_EQ(selected(), Cases({5}));

    m_view->resume();
    EXPECT_EQ(drawn(), std::set<long long>({4}));
}

TEST_F(ScatterPlotViewTest, TellsAVisitorItsKind)
{
    class Visitor : public DataViewVisitorAbstract
    {
    public:
        using DataViewVisitorAbstract::visit;

        void visit(boost::shared_ptr<ScatterPlot2DInterface> view) override
        {
            found = std::move(view);
        }

        boost::shared_ptr<ScatterPlot2DInterface> found;
    };

    Visitor visitor;

    m_view->accept(visitor);

    EXPECT_EQ(visitor.found, m_view);
}

TEST_F(ScatterPlotViewTest, SurvivesItsWidget)
{
    const auto filter = boost::make_shared<RangeFilter>(
        Project::project().variable("Speed"), ValueRange_s<double>{2.0, 9.0});
    for (const char* color : {"Gaps", "Name"}) {
        SCOPED_TRACE(color);
        makeView();
        m_view->colors().variable()->setValue(Project::project().variable(color));
        m_view->render();
        delete &m_view->widget();

        m_pipeline.addFilter(filter);
        UndoStack::history().undo();
        m_master->setSelection({3});

        m_view.reset();
        UndoStack::history().redo();
        m_pipeline.removeFilter(filter);
    }
}
