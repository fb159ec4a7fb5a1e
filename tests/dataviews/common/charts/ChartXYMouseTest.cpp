#include <dataviews/common/charts/ChartXY.h>
#include <dataviews/common/charts/VTKChartsMouseModeProperty.h>
#include <dataviews/common/selection/DataView2DSelectionSynchronizer.h>
#include <dataviews/common/selection/PlotSelectionModel.h>

#include <dataviews/platform/selection/SelectionModel.h>
#include <dataviews/platform/vtk/vtkCvCommandProxy.h>

#include <QApplication>
#include <QMouseEvent>
#include <QTest>
#include <QVTKOpenGLNativeWidget.h>

#include <vtkContextMouseEvent.h>
#include <vtkGenericOpenGLRenderWindow.h>
#include <vtkGenericRenderWindowInteractor.h>
#include <vtkPlotPoints.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkVectorOperators.h>

#include <boost/make_shared.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <utility>
#include <vector>

#include <tests/support/OffScreenChart.h>
#include <tests/support/caseTable.h>
#include <tests/support/plotSelection.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Cases = std::set<unsigned long long>;
using Rows = std::vector<vtkIdType>;

constexpr int left = vtkContextMouseEvent::LEFT_BUTTON;
constexpr int middle = vtkContextMouseEvent::MIDDLE_BUTTON;

vtkSmartPointer<vtkPlotPoints> addPlot(ChartXY& chart, const vtkSmartPointer<vtkTable>& table)
{
    auto plot = vtkSmartPointer<vtkPlotPoints>::New();
    plot->SetInputData(table, 1, 2);
    chart.AddPlot(plot);
    return plot;
}

/// A painted chart with ten points on the diagonal, whose mouse functions are called as VTK's scene would.
class ChartXYMouseTest : public testing::Test
{
protected:
    ChartXYMouseTest()
    {
        m_mode.setValue(DataViewInterface::Select);
        m_chart.render();
        m_chart->AddObserver(vtkCommand::SelectionChangedEvent, m_observer);
    }

    [[nodiscard]] vtkContextMouseEvent at(const vtkVector2f& place, int button) const
    {
        vtkContextMouseEvent event;
        event.SetInteractor(m_interactor);
        event.SetButton(button);
        event.SetPos(place);
        event.SetScenePos(place);
        event.SetScreenPos(place.Cast<int>());
        event.SetLastPos(place);
        event.SetLastScenePos(place);
        event.SetLastScreenPos(place.Cast<int>());
        return event;
    }

    [[nodiscard]] vtkVector2f point(int row) const { return pixelOf(*m_chart, row, row); }

    void drag(const vtkVector2f& from, const vtkVector2f& to, int button = left)
    {
        m_chart->MouseButtonPressEvent(at(from, button));
        vtkContextMouseEvent move = at(to, button);
        move.SetLastPos(from);
        move.SetLastScenePos(from);
        m_chart->MouseMoveEvent(move);
        m_chart->MouseButtonReleaseEvent(at(to, button));
    }

    void click(const vtkVector2f& place, int button = left)
    {
        m_chart->MouseButtonPressEvent(at(place, button));
        m_chart->MouseButtonReleaseEvent(at(place, button));
    }

    [[nodiscard]] std::vector<double> ranges() const
    {
        std::vector<double> result;
        for (const int index : {vtkAxis::BOTTOM, vtkAxis::LEFT}) {
            result.push_back(m_chart->GetAxis(index)->GetMinimum());
            result.push_back(m_chart->GetAxis(index)->GetMaximum());
        }
        return result;
    }

    /// What the plot held at each selection event since the last take.
    std::vector<Rows> takePicked() { return std::exchange(m_picked, {}); }

    OffScreenChart<ChartXY> m_chart{400, 300};
    vtkSmartPointer<vtkPlotPoints> m_plot =
        addPlot(*m_chart, caseTable({0, 1, 2, 3, 4, 5, 6, 7, 8, 9}));
    VTKChartsMouseModeProperty m_mode{vtkSmartPointer<vtkChart>(&*m_chart)};
    vtkNew<vtkGenericRenderWindowInteractor> m_interactor;
    std::vector<Rows> m_picked;
    vtkSmartPointer<vtkCvCommandProxy> m_observer =
        vtkCvCommandProxy::New([this] { m_picked.push_back(selectedRows(*m_plot)); });
};

TEST_F(ChartXYMouseTest, ClickSelectsWhatLiesWithinFivePixels)
{
    struct Case
    {
        vtkVector2f offset;
        Rows picked;
    };

    const Case cases[] = {
        {{0.0F, 0.0F}, {4}},
        {{4.5F, -4.5F}, {4}},
        {{-4.5F, 4.5F}, {4}},
        {{6.0F, 0.0F}, {}},
        {{0.0F, -6.0F}, {}},
    };

    for (const Case& c : cases) {
        click(point(4) + c.offset);
        EXPECT_THAT(takePicked(), ElementsAre(c.picked))
            << c.offset.GetX() << ' ' << c.offset.GetY();
    }
}

TEST_F(ChartXYMouseTest, DragUnderHalfAPixelInOneDirectionIsAClickWhereItBegan)
{
    struct Case
    {
        vtkVector2f from; ///< as seen from the point of row 4, as the next
        vtkVector2f to;
        Rows picked;
    };

    const vtkVector2f twoRows = point(6) - point(4);
    const vtkVector2f farther = twoRows + vtkVector2f(2.0F, 2.0F);
    const Case cases[] = {
        {{-1.0F, -1.0F}, {-0.6F, twoRows.GetY()}, {4}},
        {{1.0F, -1.0F}, {-twoRows.GetX(), -0.6F}, {4}},
        {{-2.0F, -2.0F}, farther, {4, 5, 6}},
        {{2.0F, 2.0F}, {-farther.GetX(), -farther.GetY()}, {2, 3, 4}},
        // More than half a pixel both ways is a drag, here too small to hold a point.
        {{2.0F, 2.0F}, {2.7F, 2.7F}, {}},
    };

    for (const Case& c : cases) {
        drag(point(4) + c.from, point(4) + c.to);
        EXPECT_THAT(takePicked(), ElementsAre(c.picked)) << c.to.GetX() << ' ' << c.to.GetY();
    }
}

TEST_F(ChartXYMouseTest, PlotsHoldTheBareHitsWhateverKeysAreDown)
{
    for (const int method : {vtkChart::SELECTION_ROWS, vtkChart::SELECTION_PLOTS}) {
        m_chart->SetSelectionMethod(method);
        for (const int keys : {0, 1, 2, 3}) {
            SCOPED_TRACE(testing::Message() << "method " << method << ", keys " << keys);
            m_interactor->SetControlKey(keys & 1);
            m_interactor->SetShiftKey((keys & 2) >> 1);
            for (const int row : {4, 7}) {
                selectRows(*m_plot, {2, 4, 6});
                click(point(row));
                EXPECT_THAT(takePicked(), ElementsAre(Rows{row}));
            }
            selectRows(*m_plot, {2, 4, 6});
            click(point(4) + vtkVector2f(40.0F, -40.0F));
            EXPECT_THAT(takePicked(), ElementsAre(Rows{}));
        }
    }
    EXPECT_EQ(m_interactor->GetControlKey(), 1)
        << "The keys are still there for who asks the interactor.";
}

TEST_F(ChartXYMouseTest, PlotsThatVtkSkipsContributeNothingOld)
{
    const auto hidden = addPlot(*m_chart, caseTable({20, 21}));
    const auto rigid = addPlot(*m_chart, caseTable({30, 31}));
    hidden->SetVisible(false);
    selectRows(*hidden, {1});
    selectRows(*rigid, {1});
    rigid->SetSelectable(false);
    std::vector<Rows> others;
    const auto look = vtkCvCommandProxy::New([&] {
        others = {selectedRows(*hidden), selectedRows(*rigid)};
    });
    m_chart->AddObserver(vtkCommand::SelectionChangedEvent, look);

    click(point(5), middle);
    EXPECT_THAT(selectedRows(*hidden), ElementsAre(1)) << "Not the button that selects.";
    EXPECT_THAT(selectedRows(*rigid), ElementsAre(1));

    click(point(5));
    EXPECT_THAT(takePicked(), ElementsAre(Rows{5}));
    EXPECT_THAT(others, ElementsAre(IsEmpty(), IsEmpty()));
    EXPECT_FALSE(hidden->GetVisible());
    EXPECT_FALSE(rigid->GetSelectable());
}

TEST_F(ChartXYMouseTest, StillClicksWithOtherButtonsNeitherSelectNorChangeTheRanges)
{
    const std::vector<double> before = ranges();
    for (const DataViewInterface::MouseMode mode :
         {DataViewInterface::Select, DataViewInterface::Pan, DataViewInterface::Zoom}) {
        SCOPED_TRACE(mode);
        m_mode.setValue(mode);
        for (const int button : {left, middle, int(vtkContextMouseEvent::RIGHT_BUTTON)}) {
            click(point(4), button);
            m_chart.render();
            EXPECT_EQ(ranges(), before) << "button " << button;
        }
        EXPECT_EQ(takePicked().size(), mode == DataViewInterface::Select ? 1U : 0U);
    }

    // A real drag with the same button does zoom.
    m_mode.setValue(DataViewInterface::Zoom);
    drag(point(2), point(7));
    EXPECT_GT(ranges()[0], before[0]);
    EXPECT_LT(ranges()[1], before[1]);
    EXPECT_THAT(takePicked(), ElementsAre());
}

TEST_F(ChartXYMouseTest, QuickSecondClickIsAClickOfTheButtonThatSelectsOnly)
{
    EXPECT_TRUE(m_chart->MouseDoubleClickEvent(at(point(4), left)));
    EXPECT_THAT(takePicked(), ElementsAre(Rows{4}));

    EXPECT_FALSE(m_chart->MouseDoubleClickEvent(at(point(4), middle)));
    m_mode.setValue(DataViewInterface::Pan);
    EXPECT_FALSE(m_chart->MouseDoubleClickEvent(at(point(4), left)));
    EXPECT_THAT(takePicked(), ElementsAre());
}

TEST_F(ChartXYMouseTest, AxesTakeNoMouseEvents)
{
    for (int index = 0; index < m_chart->GetNumberOfAxes(); ++index) {
        EXPECT_FALSE(m_chart->GetAxis(index)->GetInteractive()) << index;
    }
}

/// A chart in a real widget, in step with a selection model.
class ChartXYWidgetTest : public testing::Test
{
protected:
    ChartXYWidgetTest()
    {
        m_widget.setRenderWindow(m_window);
        m_view->SetRenderWindow(m_window);
        m_view->GetScene()->AddItem(m_chart);
        m_plot = addPlot(*m_chart, caseTable({100, 101, 102, 103, 104, 105, 106, 107, 108, 109}));
        m_mode = std::make_unique<VTKChartsMouseModeProperty>(m_chart);
        m_mode->setValue(DataViewInterface::Select);
        m_synchronizer = std::make_unique<DataView2DSelectionSynchronizer>(
            m_chart,
            m_widget.interactor(),
            boost::make_shared<PlotSelectionModel>(m_widget.interactor(), m_master));
        m_synchronizer->setPlotsToSynchronize({m_plot});
        m_widget.resize(500, 400);
        m_widget.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&m_widget));
        m_view->Render();
    }

    [[nodiscard]] QPoint widgetPoint(const vtkVector2f& place) const
    {
        const double ratio = m_widget.devicePixelRatioF();
        return {qRound(place.GetX() / ratio), m_widget.height() - 1 - qRound(place.GetY() / ratio)};
    }

    [[nodiscard]] QPoint point(double row) const
    {
        return widgetPoint(pixelOf(*m_chart, row, row));
    }

    /// Sent at once, unlike a move of the real pointer, which may come after the release that follows.
    void move(const QPoint& place, Qt::MouseButtons buttons, Qt::KeyboardModifiers keys)
    {
        QMouseEvent event(
            QEvent::MouseMove, place, m_widget.mapToGlobal(place), Qt::NoButton, buttons, keys);
        QApplication::sendEvent(&m_widget, &event);
    }

    void drag(const QPoint& from, const QPoint& to, Qt::KeyboardModifiers keys)
    {
        move(from, Qt::NoButton, keys);
        QTest::mousePress(&m_widget, Qt::LeftButton, keys, from);
        move((from + to) / 2, Qt::LeftButton, keys);
        move(to, Qt::LeftButton, keys);
        QTest::mouseRelease(&m_widget, Qt::LeftButton, keys, to);
    }

    void click(const QPoint& place, Qt::KeyboardModifiers keys = {})
    {
        move(place, Qt::NoButton, keys);
        QTest::mouseClick(&m_widget, Qt::LeftButton, keys, place);
    }

    QVTKOpenGLNativeWidget m_widget;
    vtkNew<vtkGenericOpenGLRenderWindow> m_window;
    vtkNew<vtkContextView> m_view;
    vtkSmartPointer<ChartXY> m_chart = vtkSmartPointer<ChartXY>::New();
    vtkSmartPointer<vtkPlotPoints> m_plot;
    std::unique_ptr<VTKChartsMouseModeProperty> m_mode;
    boost::shared_ptr<SelectionModel> m_master = boost::make_shared<SelectionModel>();
    std::unique_ptr<DataView2DSelectionSynchronizer> m_synchronizer;
};

TEST_F(ChartXYWidgetTest, ClicksSelectToggleAndClear)
{
    click(point(4));
    EXPECT_EQ(m_master->getSelections(), Cases{104});

    click(point(7), Qt::ControlModifier);
    EXPECT_EQ(m_master->getSelections(), (Cases{104, 107}));
    EXPECT_THAT(selectedRows(*m_plot), ElementsAre(4, 7));

    click(point(4), Qt::ControlModifier);
    EXPECT_EQ(m_master->getSelections(), Cases{107});
    EXPECT_THAT(selectedRows(*m_plot), ElementsAre(7));

    // Shift is no key of ours.
    click(point(2), Qt::ShiftModifier);
    EXPECT_EQ(m_master->getSelections(), Cases{102});

    const QPoint nowhere = point(4) + QPoint(60, 60);
    click(nowhere, Qt::ControlModifier);
    EXPECT_EQ(m_master->getSelections(), Cases{102});
    EXPECT_THAT(selectedRows(*m_plot), ElementsAre(2));
    click(nowhere);
    EXPECT_EQ(m_master->getSelections(), Cases{});
}

TEST_F(ChartXYWidgetTest, RubberBandSelectsAndWithControlAdds)
{
    drag(point(1.5), point(4.5), {});
    EXPECT_EQ(m_master->getSelections(), (Cases{102, 103, 104}));
    drag(point(6.5), point(3.5), Qt::ControlModifier);
    EXPECT_EQ(m_master->getSelections(), (Cases{102, 103, 104, 105, 106}));
    // Only cases that are selected: the whole selection is shown again.
    drag(point(1.5), point(3.5), Qt::ControlModifier);
    EXPECT_EQ(m_master->getSelections(), (Cases{102, 103, 104, 105, 106}));
    EXPECT_THAT(selectedRows(*m_plot), ElementsAre(2, 3, 4, 5, 6));
}

TEST_F(ChartXYWidgetTest, QuickSecondClickCounts)
{
    m_master->setSelection({101, 104});
    const QPoint place = point(4);

    click(place, Qt::ControlModifier);
    EXPECT_EQ(m_master->getSelections(), Cases{101});
    // What Qt sends for the second of two quick clicks.
    QTest::mouseDClick(&m_widget, Qt::LeftButton, Qt::ControlModifier, place);
    QTest::mouseRelease(&m_widget, Qt::LeftButton, Qt::ControlModifier, place);

    EXPECT_EQ(m_master->getSelections(), (Cases{101, 104}));
}

TEST_F(ChartXYWidgetTest, ClickOnTheLabelsOfAnAxisLeavesTheSelection)
{
    m_master->setSelection({101, 104});
    const float* const corner = m_chart->GetAxis(vtkAxis::LEFT)->GetPoint1();

    click(widgetPoint({corner[0] - 10.0F, corner[1] + 100.0F}));
    click(widgetPoint({corner[0] + 100.0F, corner[1] - 10.0F}));

    EXPECT_EQ(m_master->getSelections(), (Cases{101, 104}));
}

} // namespace
