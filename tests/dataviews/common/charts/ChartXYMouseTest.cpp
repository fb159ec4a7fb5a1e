#include <dataviews/common/charts/ChartXY.h>
#include <dataviews/common/charts/RingedPlotPoints.h>
#include <dataviews/common/charts/VTKChartsMouseModeProperty.h>

#include <dataviews/platform/vtk/vtkCvCommandProxy.h>

#include <vtkContextMouseEvent.h>
#include <vtkGenericRenderWindowInteractor.h>
#include <vtkPlotPoints.h>
#include <vtkVectorOperators.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include <tests/support/OffScreenChart.h>
#include <tests/support/caseTable.h>
#include <tests/support/plotSelection.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
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

    /// Presses at the first of \p places and lets go at the last.
    void dragAlong(const std::vector<vtkVector2f>& places)
    {
        m_chart->MouseButtonPressEvent(at(places.front(), left));
        for (const vtkVector2f& place : places) {
            m_chart->MouseMoveEvent(at(place, left));
        }
        m_chart->MouseButtonReleaseEvent(at(places.back(), left));
    }

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

TEST_F(ChartXYMouseTest, MovesWithoutAButtonAreNotPainted)
{
    m_chart->SetTooltip(nullptr);
    ASSERT_FALSE(m_chart->GetScene()->GetDirty());

    EXPECT_TRUE(m_chart->MouseMoveEvent(at(point(4), vtkContextMouseEvent::NO_BUTTON)));
    EXPECT_FALSE(m_chart->GetScene()->GetDirty());

    drag(point(2), point(4));
    EXPECT_TRUE(m_chart->GetScene()->GetDirty()) << "A rubber band is to be seen.";
}

TEST_F(ChartXYMouseTest, LassoPicksWhatTheMouseGoesAround)
{
    m_chart->setSelectionShape(SelectionShape::Lasso);
    const vtkVector2f a(12.0F, 0.0F);
    const vtkVector2f b(0.0F, 12.0F);
    const auto ringed = vtkSmartPointer<RingedPlotPoints>::New();
    ringed->SetInputData(m_plot->GetInput(), 1, 2);
    m_chart->AddPlot(ringed);
    m_chart.render();

    const struct
    {
        std::vector<vtkVector2f> way;
        Rows picked;
    } cases[] = {
        // Around two rows, with the end at the height of the begin, and at its X.
        {{point(3) - a - b, point(4) - b + a, point(4) + a + b, point(3) - a + b, point(3) - a - b},
         {3, 4}},
        {{point(6) - a - b, point(6) + a - b, point(6) + b, point(6) - a + b}, {6}},
        // Between the points, and back the same way.
        {{point(3) + b * 2.0F, point(5) + b * 2.0F}, {}},
        // A loop within a loop is outside.
        {{point(2) - a * 2.0F - b * 2.0F,
          point(2) + a * 2.0F - b * 2.0F,
          point(2) + a * 2.0F + b * 2.0F,
          point(2) - a * 2.0F + b * 2.0F,
          point(2) - a * 2.0F - b * 2.0F,
          point(2) - a - b,
          point(2) + a - b,
          point(2) + a + b,
          point(2) - a + b,
          point(2) - a - b},
         {}},
    };

    for (const auto& c : cases) {
        dragAlong(c.way);
        EXPECT_THAT(takePicked(), ElementsAre(c.picked));
        EXPECT_EQ(selectedRows(*ringed), c.picked) << "VTK's own points and the ringed ones agree.";
    }
}

TEST_F(ChartXYMouseTest, DragsAlongAnAxisPickAllThatIsInViewBetweenTheirEnds)
{
    const vtkVector2f somewhere = point(8) - point(2);
    const auto pickAlong =
        [&](SelectionShape shape, const vtkVector2f& from, const vtkVector2f& to) {
            m_chart->setSelectionShape(shape);
            drag(from, to);
            const std::vector<Rows> picked = takePicked();
            return picked.size() == 1 ? picked.front() : Rows{-1};
        };
    const vtkVector2f up(0.0F, somewhere.GetY());
    const vtkVector2f right(somewhere.GetX(), 0.0F);
    const vtkVector2f one(3.0F, 3.0F);

    EXPECT_EQ(
        pickAlong(SelectionShape::AlongX, point(2) - one, point(5) + one), Rows({2, 3, 4, 5}));
    EXPECT_EQ(
        pickAlong(SelectionShape::AlongX, point(5) + one, point(2) - one), Rows({2, 3, 4, 5}));
    EXPECT_EQ(
        pickAlong(SelectionShape::AlongX, point(2) - one + up, point(4) + one), Rows({2, 3, 4}));
    EXPECT_EQ(
        pickAlong(SelectionShape::AlongY, point(2) - one + right, point(4) + one), Rows({2, 3, 4}));
    EXPECT_EQ(
        pickAlong(SelectionShape::AlongY, point(7) - one, vtkVector2f(-50.0F, 900.0F)),
        Rows({7, 8, 9}));

    // Rows 4 to 9 are beyond the end of Y, rows 0 and 1 before the begin of X.
    m_chart->GetAxis(vtkAxis::LEFT)->SetRange(0.0, 3.5);
    m_chart->GetAxis(vtkAxis::BOTTOM)->SetRange(1.5, 9.0);
    for (const int axis : {vtkAxis::LEFT, vtkAxis::BOTTOM}) {
        m_chart->GetAxis(axis)->SetBehavior(vtkAxis::FIXED);
    }
    m_chart.render();
    EXPECT_EQ(
        pickAlong(SelectionShape::AlongX, point(3), vtkVector2f(-100.0F, 100.0F)), Rows({2, 3}));
    EXPECT_EQ(
        pickAlong(SelectionShape::AlongX, point(2) - one, vtkVector2f(900.0F, 100.0F)),
        Rows({2, 3}));
}

TEST_F(ChartXYMouseTest, ClicksAreTheSameInEveryShape)
{
    for (const SelectionShape shape :
         {SelectionShape::Rectangle,
          SelectionShape::Lasso,
          SelectionShape::AlongX,
          SelectionShape::AlongY}) {
        SCOPED_TRACE(static_cast<int>(shape));
        m_chart->setSelectionShape(shape);
        click(point(4) + vtkVector2f(4.5F, -4.5F));
        EXPECT_THAT(takePicked(), ElementsAre(Rows{4}));
        click(point(4) + vtkVector2f(6.0F, 0.0F));
        EXPECT_THAT(takePicked(), ElementsAre(Rows{}));
        EXPECT_TRUE(m_chart->MouseDoubleClickEvent(at(point(7), left)));
        EXPECT_THAT(takePicked(), ElementsAre(Rows{7}));
        if (shape != SelectionShape::Rectangle) {
            const vtkVector2f place = point(3) + vtkVector2f(2.0F, 2.0F);
            dragAlong({place, place + vtkVector2f(4.0F, 3.0F), place + vtkVector2f(-3.0F, 4.0F)});
            EXPECT_THAT(takePicked(), ElementsAre(Rows{3})) << "A hand that trembles.";
        }
    }
}

TEST_F(ChartXYMouseTest, DragsBesideAnAxisPickAlongItAndClicksThereDoNothing)
{
    const vtkVector2f below(0.0F, m_chart->GetAxis(vtkAxis::LEFT)->GetPoint1()[1] - 8.0F);
    const vtkVector2f besides(m_chart->GetAxis(vtkAxis::BOTTOM)->GetPoint1()[0] - 8.0F, 0.0F);
    const vtkVector2f onX(point(4).GetX(), below.GetY());
    const vtkVector2f onY(besides.GetX(), point(4).GetY());
    for (const SelectionShape shape :
         {SelectionShape::Rectangle, SelectionShape::Lasso, SelectionShape::AlongY}) {
        SCOPED_TRACE(static_cast<int>(shape));
        m_chart->setSelectionShape(shape);
        for (const vtkVector2f& place : {onX, onY}) {
            EXPECT_TRUE(m_chart->Hit(at(place, left)));
            selectRows(*m_plot, {1});
            click(place);
            m_chart->MouseDoubleClickEvent(at(place, left));
            EXPECT_THAT(takePicked(), ElementsAre());
            EXPECT_EQ(selectedRows(*m_plot), Rows{1});
            EXPECT_FALSE(m_chart->MouseButtonPressEvent(at(place, middle))) << "Nothing pans.";
            EXPECT_FALSE(m_chart->MouseWheelEvent(at(place, -1), 1));
        }
        drag(onX - vtkVector2f(3.0F, 0.0F), vtkVector2f(point(6).GetX() + 3.0F, 100.0F));
        EXPECT_THAT(takePicked(), ElementsAre(Rows{4, 5, 6}));
        drag(onY + vtkVector2f(0.0F, 3.0F), point(2) - vtkVector2f(3.0F, 3.0F));
        EXPECT_THAT(takePicked(), ElementsAre(Rows{2, 3, 4}));
    }
    m_mode.setValue(DataViewInterface::Pan);
    EXPECT_FALSE(m_chart->Hit(at(onX, left))) << "Only a chart whose mouse selects.";
}

TEST_F(ChartXYMouseTest, TheDraggedSelectionIsWhatTheReleasePicks)
{
    const std::vector<vtkVector2f> way = {
        point(2) - vtkVector2f(9.0F, 3.0F),
        point(5) + vtkVector2f(30.0F, -20.0F),
        point(6) + vtkVector2f(2.0F, 3.0F)};
    EXPECT_FALSE(m_chart->draggedSelection());
    const auto ringed = vtkSmartPointer<RingedPlotPoints>::New();
    ringed->SetInputData(m_plot->GetInput(), 1, 2);
    m_chart->AddPlot(ringed);
    m_chart.render();
    for (const bool paints : {true, false}) {
        m_chart->setPaintsBand(paints);
        for (const SelectionShape shape :
             {SelectionShape::Rectangle, SelectionShape::Lasso, SelectionShape::AlongY}) {
            SCOPED_TRACE(static_cast<int>(shape));
            m_chart->setSelectionShape(shape);
            m_chart.render();
            m_chart->MouseButtonPressEvent(at(way.front(), left));
            EXPECT_FALSE(m_chart->draggedSelection()) << "Not dragged yet.";
            m_chart->GetScene()->SetDirty(false);
            for (const vtkVector2f& place : way) {
                m_chart->MouseMoveEvent(at(place, left));
            }
            EXPECT_EQ(m_chart->GetScene()->GetDirty(), paints);
            Rows rows;
            const std::optional<SelectionArea> area = m_chart->draggedSelection();
            ASSERT_TRUE(area);
            area->inPlot(*ringed).forEach(
                ringed->drawnPoints(), [&](vtkIdType row) { rows.push_back(row); });
            EXPECT_FALSE(rows.empty());
            m_chart->MouseButtonReleaseEvent(at(way.back(), left));
            EXPECT_EQ(selectedRows(*ringed), rows);
            EXPECT_THAT(takePicked(), ElementsAre(rows));
            EXPECT_FALSE(m_chart->draggedSelection());
        }
    }
}

TEST_F(ChartXYMouseTest, CancelledDragsAreWithoutEffectUntilTheNextPress)
{
    for (const DataViewInterface::MouseMode mode :
         {DataViewInterface::Select, DataViewInterface::Pan, DataViewInterface::Zoom}) {
        SCOPED_TRACE(mode);
        m_mode.setValue(mode);
        m_chart->MouseButtonPressEvent(at(point(2), left));
        m_chart->MouseMoveEvent(at(point(5), left));
        const std::vector<double> before = ranges();
        m_chart->cancelDrag();
        EXPECT_FALSE(m_chart->draggedSelection());
        EXPECT_FALSE(m_chart->draggedZoom());
        m_chart->MouseMoveEvent(at(point(6), left));
        m_chart->MouseButtonReleaseEvent(at(point(6), left));
        EXPECT_EQ(ranges(), before);
        EXPECT_THAT(takePicked(), ElementsAre());
    }
    m_mode.setValue(DataViewInterface::Select);
    m_chart.render();
    click(point(4));
    EXPECT_THAT(takePicked(), ElementsAre(Rows{4}));
}

TEST_F(ChartXYMouseTest, AxesTakeNoMouseEvents)
{
    const vtkVector2f corner(m_chart->GetAxis(vtkAxis::LEFT)->GetPoint1());
    vtkContextMouseEvent event = at(corner - vtkVector2f(3.0F, -30.0F), left);
    for (const int index : {vtkAxis::LEFT, vtkAxis::BOTTOM}) {
        EXPECT_FALSE(m_chart->GetAxis(index)->Hit(event)) << index;
        event = at(corner - vtkVector2f(-30.0F, 3.0F), left);
    }
}

} // namespace
