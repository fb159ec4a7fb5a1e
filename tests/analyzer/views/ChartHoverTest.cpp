#include <analyzer/views/AxisMapping.h>
#include <analyzer/views/CaseToolTip.h>
#include <analyzer/views/ChartHover.h>
#include <analyzer/views/HoveredCase.h>

#include <dataviews/common/charts/ChartXY.h>

#include <dataviews/platform/signals/SignalConnectionCollection.h>
#include <dataviews/platform/vtk/vtkCvCommandProxy.h>

#include <QApplication>
#include <QEventLoop>
#include <QImage>
#include <QTest>
#include <QVTKOpenGLNativeWidget.h>

#include <vtkAxis.h>
#include <vtkCommand.h>
#include <vtkContextScene.h>
#include <vtkContextView.h>
#include <vtkDoubleArray.h>
#include <vtkGenericOpenGLRenderWindow.h>
#include <vtkIntArray.h>
#include <vtkNew.h>
#include <vtkPlot.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkSmartPointer.h>
#include <vtkTable.h>

#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include <tests/support/SmallStudy.h>
#include <tests/support/mouseMoves.h>

namespace analyzer {

namespace {

using CaseID = std::optional<unsigned long long>;

constexpr double missing = std::numeric_limits<double>::quiet_NaN();

template <class Array, class Value>
vtkSmartPointer<Array> column(const char* name, const std::vector<Value>& values)
{
    auto array = vtkSmartPointer<Array>::New();
    array->SetName(name);
    for (const Value value : values) {
        array->InsertNextValue(value);
    }
    return array;
}

/// Case IDs, "x" as reals and as whole numbers, "y" as reals.
vtkSmartPointer<vtkTable> makeTable(
    const std::vector<int>& ids, const std::vector<double>& x, const std::vector<double>& y)
{
    auto table = vtkSmartPointer<vtkTable>::New();
    table->AddColumn(column<vtkIntArray>("Case ID", ids));
    table->AddColumn(column<vtkDoubleArray>("x", x));
    table->AddColumn(column<vtkDoubleArray>("y", y));
    std::vector<int> whole;
    for (const double value : x) {
        whole.push_back(value == value ? static_cast<int>(value) : 0);
    }
    table->AddColumn(column<vtkIntArray>("whole x", whole));
    return table;
}

/// A chart in a window with the axes from 0 to 10, and what a user's mouse does there.
class HoveredChart
{
public:
    HoveredChart()
    {
        const vtkNew<vtkGenericOpenGLRenderWindow> window;
        widget.setRenderWindow(window);
        view->SetRenderWindow(window);
        view->GetScene()->AddItem(chart);
        chart->SetRenderEmpty(true);
        hover = std::make_unique<ChartHover>(widget, *chart, hovered, nullptr);
        m_connections.add(hovered->signalHoveredCaseChanged.connect(
            [this] { changes.push_back(hovered->caseID()); }));
        widget.resize(500, 400);
        widget.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&widget));
        showAxes({0.0, 10.0}, {0.0, 10.0});
    }

    HoveredChart(const HoveredChart&) = delete;
    HoveredChart& operator=(const HoveredChart&) = delete;

    ~HoveredChart() { m_connections.clear(); }

    void setPlots(const std::vector<vtkSmartPointer<vtkTable>>& tables, const char* x = "x")
    {
        std::vector<ChartHover::Plot> plots;
        for (const vtkSmartPointer<vtkTable>& table : tables) {
            plots.push_back(ChartHover::plotOf(*table, x, "y").value());
        }
        hover->setPlots(plots);
    }

    void showAxes(std::pair<double, double> x, std::pair<double, double> y)
    {
        chart->GetAxis(vtkAxis::BOTTOM)->SetRange(x.first, x.second);
        chart->GetAxis(vtkAxis::LEFT)->SetRange(y.first, y.second);
        render();
    }

    void render()
    {
        view->Render();
        settle();
    }

    [[nodiscard]] QPointF place(double x, double y) const
    {
        const double ratio = widget.devicePixelRatioF();
        return {
            AxisMapping(*chart->GetAxis(vtkAxis::BOTTOM), 0).toPixel(x) / ratio,
            widget.height() - AxisMapping(*chart->GetAxis(vtkAxis::LEFT), 1).toPixel(y) / ratio};
    }

    /// Moves the mouse beside the point (\p x, \p y) of the data, as the window system tells it.
    void sendMove(double x, double y, int pixelsRight = 0, Qt::MouseButtons buttons = Qt::NoButton)
    {
        const QPoint point = place(x, y).toPoint() + QPoint(pixelsRight, 0);
        sendMouseMove(widget, point, buttons);
    }

    void moveTo(double x, double y, int pixelsRight = 0)
    {
        sendMove(x, y, pixelsRight);
        settle();
    }

    /// The middle of the ring; none while it is hidden.
    [[nodiscard]] std::optional<QPointF> ring() const
    {
        if (!hover->mark()->isVisible()) {
            return std::nullopt;
        }
        return QRectF(hover->mark()->geometry()).center();
    }

    [[nodiscard]] bool hasRingAround(double x, double y) const
    {
        const std::optional<QPointF> center = ring();
        return center && (*center - place(x, y)).manhattanLength() < 2.0;
    }

    QVTKOpenGLNativeWidget widget;
    vtkNew<vtkContextView> view;
    vtkNew<ChartXY> chart;
    boost::shared_ptr<HoveredCase> hovered = boost::make_shared<HoveredCase>();
    std::unique_ptr<ChartHover> hover;
    std::vector<CaseID> changes;

private:
    SignalConnectionCollection m_connections;
};

} // namespace

TEST(ChartHoverTest, NearestPointWithinReachIsHovered)
{
    HoveredChart chart;
    const auto table = makeTable({11, 12, 13, 14}, {2, 5, missing, 8}, {2, 5, 5, missing});

    const struct
    {
        double x, y;
        int pixelsRight;
        CaseID hovered;
    } moves[] = {
        {2, 2, 0, 11},
        {5, 5, 4, 12},
        {5, 5, -4, 12},
        {5, 5, 7, std::nullopt},
        {8, 8, 0, std::nullopt},
        {3.5, 3.5, 0, std::nullopt},
    };

    for (const char* x : {"x", "whole x"}) {
        chart.setPlots({table}, x);
        for (const auto& move : moves) {
            SCOPED_TRACE(
                testing::Message()
                << x << ": " << move.x << ", " << move.y << " + " << move.pixelsRight);

            chart.moveTo(move.x, move.y, move.pixelsRight);

            EXPECT_EQ(chart.hovered->caseID(), move.hovered);
            EXPECT_EQ(chart.ring().has_value(), move.hovered.has_value());
        }
    }
}

TEST(ChartHoverTest, ReachGrowsWithThePoints)
{
    HoveredChart chart;
    chart.setPlots({makeTable({1}, {5}, {5})});
    chart.moveTo(5, 5, 9);
    EXPECT_EQ(chart.hovered->caseID(), std::nullopt);

    chart.hover->setMarkerRadius(12.0);
    chart.moveTo(5, 5, 9);

    EXPECT_EQ(chart.hovered->caseID(), CaseID(1));
    EXPECT_GT(chart.hover->mark()->width(), 24);
}

TEST(ChartHoverTest, NearerPointWinsAndOfThoseInOnePlaceTheUppermost)
{
    HoveredChart chart;
    chart.setPlots(
        {makeTable({1, 2, 3, 5}, {4, 4.08, 6, 10.05}, {4, 4, 6, 5}), makeTable({4}, {6}, {6})});

    chart.moveTo(4, 4);
    EXPECT_EQ(chart.hovered->caseID(), CaseID(1));
    chart.moveTo(4.08, 4, 2);
    EXPECT_EQ(chart.hovered->caseID(), CaseID(2));
    chart.moveTo(6, 6);
    EXPECT_EQ(chart.hovered->caseID(), CaseID(4));
    chart.moveTo(9.98, 5);
    EXPECT_EQ(chart.hovered->caseID(), std::nullopt) << "outside of the axes nothing is drawn";
}

TEST(ChartHoverTest, PointsFarFromZeroAreToldApart)
{
    HoveredChart chart;
    constexpr double far = 1e12; // a float there is good to 65536
    chart.setPlots({makeTable({1, 2, 3}, {far + 2, far + 5, far + 8}, {5, 5, 5})});
    chart.showAxes({far, far + 10}, {0, 10});

    for (const int id : {1, 2, 3}) {
        chart.moveTo(far + 3 * id - 1, 5, 2);
        EXPECT_EQ(chart.hovered->caseID(), CaseID(id));
        EXPECT_TRUE(chart.hasRingAround(far + 3 * id - 1, 5));
    }
    chart.moveTo(far + 3.5, 5);
    EXPECT_EQ(chart.hovered->caseID(), std::nullopt);
}

TEST(ChartHoverTest, WhatTakesTheMouseAwayEndsTheHover)
{
    HoveredChart chart;
    chart.setPlots({makeTable({7}, {5}, {5})});

    const struct
    {
        const char* name;
        std::function<void()> action;
    } actions[] = {
        {"the mouse leaves", [&] { sendLeave(chart.widget); }},
        {"a button is pressed",
         [&] {
             QTest::mousePress(&chart.widget, Qt::RightButton, {}, {250, 200});
         }},
        {"the mouse drags", [&] { chart.sendMove(5, 5, 0, Qt::LeftButton); }},
        {"the mouse goes out of the axes", [&] { chart.moveTo(-0.5, 5); }},
        {"the point goes", [&] {
             chart.setPlots({});
             chart.render();
         }}};

    for (const auto& action : actions) {
        SCOPED_TRACE(action.name);
        chart.moveTo(5, 5);
        ASSERT_EQ(chart.hovered->caseID(), CaseID(7));

        action.action();
        settle();

        EXPECT_EQ(chart.hovered->caseID(), std::nullopt);
        EXPECT_FALSE(chart.ring());
    }
    chart.setPlots({makeTable({7}, {5}, {5})});
    chart.moveTo(5, 5);
    ASSERT_EQ(chart.hovered->caseID(), CaseID(7));
    chart.widget.hide();
    EXPECT_EQ(chart.hovered->caseID(), std::nullopt);
}

TEST(ChartHoverTest, QueuedMovesAreAnsweredOnce)
{
    HoveredChart chart;
    chart.setPlots({makeTable({1, 2, 3}, {2, 5, 8}, {2, 5, 8})});
    chart.changes.clear();

    chart.sendMove(2, 2);
    chart.sendMove(5, 5);
    chart.sendMove(8, 8);
    settle();

    EXPECT_EQ(chart.changes, std::vector<CaseID>{3});
}

TEST(ChartHoverTest, CaseHoveredElsewhereIsMarkedInTheFirstPlotThatHasIt)
{
    HoveredChart chart;
    chart.setPlots(
        {makeTable({1, 2, 3}, {2, 3, 20}, {2, 7, 5}),
         makeTable({2, 4, 5}, {8, 6, 6}, {8, 3, missing})});

    const struct
    {
        CaseID hovered;
        std::optional<std::pair<double, double>> ring;
    } cases[] = {
        {1, {{2, 2}}},
        {2, {{3, 7}}},
        {3, std::nullopt}, // outside of the axes
        {4, {{6, 3}}},
        {5, std::nullopt}, // without a value
        {6, std::nullopt}, // of nobody
        {1, {{2, 2}}},
        {(1ULL << 32) + 1, std::nullopt},
        {std::nullopt, std::nullopt},
    };

    for (const auto& one : cases) {
        SCOPED_TRACE(one.hovered.value_or(0));
        chart.hovered->setCaseID(one.hovered);

        EXPECT_EQ(chart.ring().has_value(), one.ring.has_value());
        if (one.ring) {
            EXPECT_TRUE(chart.hasRingAround(one.ring->first, one.ring->second));
        }
    }
}

TEST(ChartHoverTest, HoverOfAnotherViewStaysWhenTheMouseIsOnNoPointHere)
{
    HoveredChart chart;
    chart.setPlots({makeTable({1}, {5}, {5})});
    chart.hovered->setCaseID(1);

    chart.moveTo(2, 2);
    chart.hover.reset();

    EXPECT_EQ(chart.hovered->caseID(), CaseID(1));
}

TEST(ChartHoverTest, MarkFollowsTheAxes)
{
    HoveredChart chart;
    chart.setPlots({makeTable({1}, {5}, {5})});
    chart.hovered->setCaseID(1);
    ASSERT_TRUE(chart.hasRingAround(5, 5));
    const QPointF before = *chart.ring();

    chart.showAxes({4, 8}, {0, 10});
    EXPECT_TRUE(chart.hasRingAround(5, 5));
    EXPECT_LT(chart.ring()->x(), before.x() - 50.0);

    chart.showAxes({6, 8}, {0, 10});
    EXPECT_FALSE(chart.ring());
}

TEST(ChartHoverTest, NeitherTheMarkNorTheMouseRendersAnything)
{
    HoveredChart chart;
    chart.setPlots({makeTable({1, 2}, {3, 7}, {3, 7})});
    chart.render();
    int pictures = 0;
    const auto counter = vtkCvCommandProxy::New([&pictures] { ++pictures; });
    chart.widget.renderWindow()->AddObserver(vtkCommand::EndEvent, counter);

    for (const CaseID caseID : {CaseID(1), CaseID(2), CaseID(1), CaseID()}) {
        chart.hovered->setCaseID(caseID);
        chart.widget.window()->repaint();
        settle();
    }
    EXPECT_EQ(pictures, 0);
    counter->setCallback({});

    for (const double place : {3.0, 5.0, 7.0}) {
        chart.moveTo(place, place);
        EXPECT_FALSE(chart.view->GetScene()->GetDirty());
    }
}

TEST(ChartHoverTest, RingIsSeenOnLightAndOnDark)
{
    HoveredChart chart;
    chart.setPlots({makeTable({1}, {5}, {5})});
    chart.hovered->setCaseID(1);

    for (const QColor& background : {QColor(Qt::white), QColor(Qt::black)}) {
        QImage picture(chart.hover->mark()->size(), QImage::Format_ARGB32_Premultiplied);
        picture.fill(background);
        chart.hover->mark()->render(
            &picture, QPoint(), QRegion(), QWidget::RenderFlag::DrawChildren);

        int light = 0;
        int dark = 0;
        for (int x = 0; x < picture.width(); ++x) {
            for (int y = 0; y < picture.height(); ++y) {
                light += picture.pixelColor(x, y).lightness() > 200 ? 1 : 0;
                dark += picture.pixelColor(x, y).lightness() < 60 ? 1 : 0;
            }
        }
        EXPECT_GT(light, 20);
        EXPECT_GT(dark, 20);
        // Nothing lies over the point itself.
        EXPECT_EQ(picture.pixelColor(picture.rect().center()), background);
    }
}

TEST(ChartHoverTest, EventsStillReachTheChart)
{
    HoveredChart chart;

    chart.moveTo(2, 3);
    const int before = chart.widget.interactor()->GetEventPosition()[0];
    chart.moveTo(2, 3, 17);

    EXPECT_EQ(chart.widget.interactor()->GetEventPosition()[0] - before, 17);
}

TEST(ChartHoverTest, ToolTipShowsTheCaseUnderTheMouseAndGoesWithIt)
{
    SmallStudy study(2);
    study.add("x", {3, 7}).add("y", {3, 7}).open();
    HoveredChart chart;
    chart.setPlots({makeTable({1, 2}, {3, 7}, {3, 7})});
    chart.hover->setToolTipVariables({Project::project().variable("y")});

    chart.hovered->setCaseID(1);
    EXPECT_EQ(chart.hover->toolTip(), nullptr); // hovered elsewhere
    chart.moveTo(3, 3);
    ASSERT_NE(chart.hover->toolTip(), nullptr);
    CaseToolTip& toolTip = *chart.hover->toolTip();
    EXPECT_FALSE(toolTip.isVisible()); // the mouse has not rested
    toolTip.setDelays(0, 60000);
    chart.moveTo(7, 7);
    while (!toolTip.isVisible()) {
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    EXPECT_EQ(toolTip.title(), "Case 2");
    EXPECT_EQ(toolTip.values().front().name, "y");
    EXPECT_FALSE(
        toolTip.geometry().contains(chart.widget.mapToGlobal(chart.place(7, 7).toPoint())));

    QEvent deactivation(QEvent::WindowDeactivate);
    QApplication::sendEvent(&chart.widget, &deactivation);
    EXPECT_FALSE(toolTip.isVisible());
    chart.moveTo(3, 3);
    EXPECT_TRUE(toolTip.isVisible());
    chart.moveTo(5, 3);
    EXPECT_FALSE(toolTip.isVisible());
    chart.moveTo(3, 3);
    EXPECT_TRUE(toolTip.isVisible());
    chart.hovered->setCaseID(2);
    EXPECT_FALSE(toolTip.isVisible());
}

TEST(ChartHoverTest, WidgetMayGoFirst)
{
    const auto hovered = boost::make_shared<HoveredCase>();
    auto widget = std::make_unique<QVTKOpenGLNativeWidget>();
    const vtkNew<vtkGenericOpenGLRenderWindow> window;
    const vtkNew<ChartXY> chart;
    widget->setRenderWindow(window);
    ChartHover hover(*widget, *chart, hovered, nullptr);
    hover.setPlots({ChartHover::plotOf(*makeTable({1}, {5}, {5}), "x", "y").value()});

    widget.reset();
    hovered->setCaseID(1);

    EXPECT_EQ(hover.mark(), nullptr);
}

TEST(ChartHoverTest, PlotNeedsNumbersAndCaseIDs)
{
    const auto table = makeTable({1}, {5}, {5});
    const auto strange = vtkSmartPointer<vtkTable>::New();
    strange->AddColumn(column<vtkDoubleArray>("Case ID", std::vector<double>{1}));
    strange->AddColumn(column<vtkDoubleArray>("y", std::vector<double>{1}));

    EXPECT_TRUE(ChartHover::plotOf(*table, "Case ID", "y"));
    EXPECT_FALSE(ChartHover::plotOf(*table, "z", "y"));
    EXPECT_FALSE(ChartHover::plotOf(*table, "x", ""));
    EXPECT_FALSE(ChartHover::plotOf(*strange, "y", "y"));
    EXPECT_FALSE(ChartHover::plotOf(*vtkSmartPointer<vtkTable>::New(), "x", "y"));
}

} // namespace analyzer
