#include <dataviews/common/charts/ChartXY.h>

#include <dataviews/platform/serialize/Serializer.h>

#include <QDomDocument>

#include <vtkChartLegend.h>
#include <vtkObjectFactory.h>
#include <vtkPlotPoints.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include <tests/support/OffScreenChart.h>
#include <tests/support/caseTable.h>

namespace {

using testing::ElementsAre;

constexpr float unplaced = -1984.0F;

/// A legend of a given size that needs no fonts and paints nothing.
class SizedLegend : public vtkChartLegend
{
public:
    vtkTypeMacro(SizedLegend, vtkChartLegend) static SizedLegend* New()
    {
        VTK_STANDARD_NEW_BODY(SizedLegend);
    }

    vtkRectf GetBoundingRect(vtkContext2D* /*painter*/) override
    {
        ++m_measured;
        return {std::floor(GetPoint()[0]), std::floor(GetPoint()[1]), m_width, m_height};
    }

    void Update() override { m_updates->push_back(this); }

    bool Paint(vtkContext2D* /*painter*/) override
    {
        ++m_painted;
        return true;
    }

    [[nodiscard]] std::vector<float> place() { return {GetPoint()[0], GetPoint()[1]}; }

    float m_width = 100.0F;
    float m_height = 50.0F;
    int m_measured = 0;
    int m_painted = 0;
    std::vector<SizedLegend*> m_ownUpdates;
    std::vector<SizedLegend*>* m_updates = &m_ownUpdates;
};

class OpenChart : public ChartXY
{
public:
    vtkTypeMacro(OpenChart, ChartXY) static OpenChart* New() { VTK_STANDARD_NEW_BODY(OpenChart); }

    void layOut() { SetLegendPosition(vtkRectf(1.0F, 2.0F, 3.0F, 4.0F)); }

    vtkSmartPointer<SizedLegend> addSizedLegend(float width, float height)
    {
        auto legend = vtkSmartPointer<SizedLegend>::New();
        legend->m_width = width;
        legend->m_height = height;
        addLegend(legend);
        return legend;
    }
};

/// A chart of 400 × 300 pixels with a border of 20, never painted.
class ChartXYLegendTest : public testing::Test
{
protected:
    ChartXYLegendTest() { m_chart->SetSize(vtkRectf(0.0F, 0.0F, 400.0F, 300.0F)); }

    vtkSmartPointer<SizedLegend> settledLegend(float width, float height)
    {
        auto legend = m_chart->addSizedLegend(width, height);
        m_chart->layOut();
        m_chart->layOut();
        return legend;
    }

    vtkSmartPointer<OpenChart> m_chart = vtkSmartPointer<OpenChart>::New();
};

TEST_F(ChartXYLegendTest, AddedLegendIsRegisteredUnplacedAndPartOfTheChart)
{
    const auto other = vtkSmartPointer<vtkChartXY>::New();
    const vtkIdType items = m_chart->GetNumberOfItems();
    const auto legend = vtkSmartPointer<SizedLegend>::New();
    const auto ofAnother = vtkSmartPointer<SizedLegend>::New();
    legend->SetPoint(3.0F, 4.0F);
    ofAnother->SetChart(other);

    m_chart->addLegend(legend);
    m_chart->addLegend(ofAnother);

    EXPECT_THAT(legend->place(), ElementsAre(unplaced, unplaced));
    EXPECT_EQ(legend->GetChart(), m_chart);
    EXPECT_EQ(ofAnother->GetChart(), other);
    EXPECT_EQ(m_chart->GetNumberOfItems(), items + 2);

    EXPECT_EQ(m_chart->GetLegend()->GetPoint()[0], unplaced);
    EXPECT_EQ(items, vtkSmartPointer<vtkChartXY>::New()->GetNumberOfItems())
        << "The own legend was added twice.";
}

TEST_F(ChartXYLegendTest, NewLegendsStackFromTheTopRightAndSettleInTwoPasses)
{
    const auto first = m_chart->addSizedLegend(100.0F, 50.0F);
    const auto second = m_chart->addSizedLegend(60.0F, 30.0F);

    m_chart->layOut();
    EXPECT_THAT(first->place(), ElementsAre(280.0F, 270.0F));
    EXPECT_THAT(second->place(), ElementsAre(200.0F, 290.0F));

    for (int pass = 0; pass < 2; ++pass) {
        m_chart->layOut();
        EXPECT_THAT(first->place(), ElementsAre(280.0F, 230.0F));
        EXPECT_THAT(second->place(), ElementsAre(200.0F, 250.0F));
    }
}

TEST_F(ChartXYLegendTest, LegendThatChangesItsSizeKeepsItsTopRightCornerAndItsPlaceInTheStack)
{
    const auto legend = settledLegend(100.0F, 50.0F);

    legend->m_width = 140.0F;
    legend->m_height = 80.0F;
    m_chart->layOut();
    EXPECT_THAT(legend->place(), ElementsAre(240.0F, 200.0F));

    legend->m_width = 90.0F;
    m_chart->layOut();
    EXPECT_THAT(legend->place(), ElementsAre(290.0F, 200.0F));

    EXPECT_THAT(settledLegend(50.0F, 50.0F)->place(), ElementsAre(220.0F, 230.0F));
}

TEST_F(ChartXYLegendTest, MovedLegendsLeaveTheStackForGood)
{
    const auto first = settledLegend(100.0F, 50.0F);
    const auto second = settledLegend(60.0F, 50.0F);
    EXPECT_THAT(second->place(), ElementsAre(200.0F, 230.0F));

    second->SetPoint(150.0F, 100.0F);
    m_chart->layOut();
    EXPECT_THAT(second->place(), ElementsAre(150.0F, 100.0F));
    second->SetPoint(200.0F, 230.0F);
    m_chart->layOut();
    EXPECT_THAT(settledLegend(40.0F, 50.0F)->place(), ElementsAre(220.0F, 230.0F))
        << "Room is still reserved.";

    // Straight down keeps the right edge: still in the stack.
    first->SetPoint(280.0F, 90.0F);
    m_chart->layOut();
    EXPECT_THAT(settledLegend(10.0F, 50.0F)->place(), ElementsAre(190.0F, 230.0F));

    // The clamp moves legends as a user does.
    m_chart->SetSize(vtkRectf(0.0F, 0.0F, 300.0F, 300.0F));
    m_chart->layOut();
    m_chart->SetSize(vtkRectf(0.0F, 0.0F, 400.0F, 300.0F));
    m_chart->layOut();
    EXPECT_THAT(first->place(), ElementsAre(180.0F, 90.0F));
}

TEST_F(ChartXYLegendTest, NoLegendLeavesTheChart)
{
    struct Case
    {
        float width;
        float height;
        std::vector<float> dragged;
        std::vector<float> place;
    };

    const Case cases[] = {
        {100.0F, 50.0F, {20.0F, 230.0F}, {20.0F, 230.0F}},
        {100.0F, 50.0F, {19.0F, 40.0F}, {20.0F, 40.0F}},
        {100.0F, 50.0F, {281.0F, 40.0F}, {280.0F, 40.0F}},
        {100.0F, 50.0F, {30.0F, 231.0F}, {30.0F, 230.0F}},
        // Only the top edge is kept inside.
        {100.0F, 50.0F, {30.0F, -31.0F}, {30.0F, -30.0F}},
        {100.0F, 400.0F, {30.0F, 0.0F}, {30.0F, -120.0F}},
        // The right side wins for one that is too wide.
        {500.0F, 50.0F, {10.0F, 40.0F}, {-120.0F, 40.0F}},
    };

    for (const Case& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.dragged));
        const auto legend = settledLegend(c.width, c.height);
        legend->SetPoint(c.dragged[0], c.dragged[1]);

        m_chart->layOut();

        EXPECT_EQ(legend->place(), c.place);
    }
}

TEST_F(ChartXYLegendTest, NothingIsTouchedWhileSettingsAreRead)
{
    class Reader : public Serializer
    {
    public:
        explicit Reader(std::function<void()> reaction)
            : Serializer("Reader")
            , m_reaction(std::move(reaction))
        {}

    protected:
        void deserializeSelf(const QDomElement& /*element*/) override { m_reaction(); }

    private:
        std::function<void()> m_reaction;
    };

    const auto restored = m_chart->addSizedLegend(100.0F, 50.0F);
    const auto waiting = m_chart->addSizedLegend(60.0F, 50.0F);
    Reader reader([&] {
        restored->SetPoint(-70.0F, 33.0F);
        m_chart->layOut();
        EXPECT_THAT(restored->place(), ElementsAre(-70.0F, 33.0F));
        EXPECT_THAT(waiting->place(), ElementsAre(unplaced, unplaced));
        EXPECT_EQ(restored->m_measured, 0);
    });
    QDomDocument document;
    QDomElement root = document.createElement(QStringLiteral("Root"));
    reader.serialize(root);

    reader.deserialize(root);
    m_chart->layOut();

    EXPECT_THAT(restored->place(), ElementsAre(-70.0F, 33.0F)) << "A restored legend was placed.";
    EXPECT_THAT(waiting->place(), ElementsAre(320.0F, 270.0F))
        << "A restored legend has no room in the stack.";
    m_chart->layOut();
    EXPECT_THAT(restored->place(), ElementsAre(20.0F, 33.0F));
}

TEST_F(ChartXYLegendTest, HiddenLegendsAreNeitherMeasuredNorMoved)
{
    const auto legend = m_chart->addSizedLegend(100.0F, 50.0F);
    legend->SetVisible(false);
    m_chart->layOut();
    EXPECT_EQ(legend->m_measured, 0);
    EXPECT_THAT(legend->place(), ElementsAre(unplaced, unplaced));

    legend->SetVisible(true);
    m_chart->layOut();
    m_chart->layOut();
    EXPECT_THAT(legend->place(), ElementsAre(280.0F, 230.0F));

    // What it was when it was last seen is what the corner is anchored to.
    legend->SetVisible(false);
    legend->m_width = 150.0F;
    legend->m_measured = 0;
    m_chart->layOut();
    EXPECT_THAT(legend->place(), ElementsAre(280.0F, 230.0F));
    EXPECT_EQ(legend->m_measured, 0);
    legend->SetVisible(true);
    m_chart->layOut();
    EXPECT_THAT(legend->place(), ElementsAre(230.0F, 230.0F));
}

TEST_F(ChartXYLegendTest, UpdateUpdatesEachLegendOnceInOrder)
{
    std::vector<SizedLegend*> updates;
    const auto first = m_chart->addSizedLegend(1.0F, 1.0F);
    const auto second = m_chart->addSizedLegend(1.0F, 1.0F);
    second->m_updates = first->m_updates = &updates;

    m_chart->Update();

    EXPECT_THAT(updates, ElementsAre(first.Get(), second.Get()));
}

class ChartXYPaintTest : public testing::Test
{
protected:
    void addPoints(double first)
    {
        const auto plot = vtkSmartPointer<vtkPlotPoints>::New();
        plot->SetInputData(
            caseTable({1, 2, 3}, {first, first + 1, first + 2}, {first, first + 1, first + 2}),
            1,
            2);
        plot->SetColor(1.0, 0.0, 0.0);
        plot->SetMarkerStyle(vtkPlotPoints::SQUARE);
        plot->SetMarkerSize(12.0F);
        m_chart->AddPlot(plot);
    }

    OffScreenChart<OpenChart> m_chart{400, 300};
};

TEST_F(ChartXYPaintTest, FirstFrameShowsAllPointsAlsoFarFromZero)
{
    const auto expectAllInOneFrame = [this] {
        m_chart->GetScene()->SetDirty(true);
        m_chart.render();
        const int inFirstFrame = m_chart.redPixels();
        m_chart->GetScene()->SetDirty(true);
        m_chart.render();
        EXPECT_GT(inFirstFrame, 0);
        EXPECT_EQ(inFirstFrame, m_chart.redPixels());
    };
    for (const double first : {0.0, 1e6, -3e7}) {
        SCOPED_TRACE(first);
        m_chart->ClearPlots();
        addPoints(first);
        expectAllInOneFrame();
    }

    // After a zoom into a part that is far from zero, too.
    addPoints(0.0);
    expectAllInOneFrame();
    for (const int index : {vtkAxis::BOTTOM, vtkAxis::LEFT}) {
        m_chart->GetAxis(index)->SetBehavior(vtkAxis::FIXED);
        m_chart->GetAxis(index)->SetRange(-3e7 - 1.0, -3e7 + 3.0);
    }
    expectAllInOneFrame();
}

TEST_F(ChartXYPaintTest, FirstFrameShowsLegendsWhereTheyStay)
{
    addPoints(0.0);
    m_chart->SetShowLegend(true);
    const auto legend = m_chart->addSizedLegend(60.0F, 40.0F);

    m_chart.render();

    vtkChartLegend* const own = m_chart->GetLegend();
    EXPECT_EQ(legend->m_painted, 1);
    EXPECT_EQ(legend->GetPoint()[1], 300.0F - 20.0F - 40.0F);
    EXPECT_EQ(legend->GetPoint()[0] + 60.0F + 20.0F, own->GetPoint()[0]);
    EXPECT_EQ(m_chart->GetSize().GetWidth(), 400.0F);
}

TEST_F(ChartXYPaintTest, ChartWithASizeOfItsOwnKeepsIt)
{
    addPoints(0.0);
    m_chart->SetAutoSize(false);
    m_chart->SetSize(vtkRectf(50.0F, 40.0F, 300.0F, 200.0F));
    const auto legend = m_chart->addSizedLegend(60.0F, 40.0F);

    m_chart.render();

    EXPECT_EQ(m_chart->GetSize().GetWidth(), 300.0F);
    EXPECT_EQ(m_chart->GetSize().GetX(), 50.0F);
    EXPECT_THAT(legend->place(), ElementsAre(220.0F, 140.0F));

    // A window that grows around the chart is no change of its size.
    m_chart->setLegendsFollowSize(true);
    m_chart.render();
    m_chart.resize(500, 400);
    m_chart.render();
    EXPECT_THAT(legend->place(), ElementsAre(220.0F, 140.0F));
}

TEST_F(ChartXYPaintTest, LegendsStayPutInAGrowingChartUnlessTheyFollowItsSize)
{
    addPoints(0.0);
    const auto stacked = m_chart->addSizedLegend(60.0F, 40.0F);
    const auto dragged = m_chart->addSizedLegend(50.0F, 40.0F);
    m_chart.render();
    dragged->SetPoint(100.0F, 90.0F);
    m_chart.render();

    m_chart.resize(440, 330);
    m_chart.render();
    EXPECT_THAT(stacked->place(), ElementsAre(320.0F, 240.0F));
    EXPECT_THAT(dragged->place(), ElementsAre(100.0F, 90.0F));

    // Only what happens from now on is followed.
    m_chart->setLegendsFollowSize(true);
    m_chart->GetScene()->SetDirty(true);
    m_chart.render();
    EXPECT_THAT(stacked->place(), ElementsAre(320.0F, 240.0F));
    EXPECT_THAT(dragged->place(), ElementsAre(100.0F, 90.0F));

    m_chart.resize(500, 300);
    m_chart.render();
    EXPECT_THAT(stacked->place(), ElementsAre(380.0F, 210.0F));
    EXPECT_THAT(dragged->place(), ElementsAre(160.0F, 60.0F));

    const auto third = m_chart->addSizedLegend(50.0F, 40.0F);
    m_chart.render();
    EXPECT_THAT(third->place(), ElementsAre(310.0F, 240.0F)) << "The first one counts as moved.";
}

/// The axes of a chart of 400 × 300 pixels that are fitted to points with a margin.
TEST(ChartXYFitTest, PointsKeepTheirDistanceFromTheEndsOfFittedAxes)
{
    constexpr float margin = 20.0F;
    const std::vector<double> cases[] = {
        {0.0, 10.0},
        {0.5, 9.5},
        {3.9, 10.0},
        {0.0, 99.9},
        {-7.0, 0.0},
        {1e6, 1e6 + 1.0},
        {-5.0},
        {5.0},
        {0.0},
        {-1e9, 1e-9},
    };

    for (const std::vector<double>& values : cases) {
        SCOPED_TRACE(testing::PrintToString(values));
        OffScreenChart<ChartXY> chart(400, 300);
        vtkNew<vtkPlotPoints> plot;
        plot->SetInputData(caseTable(std::vector<int>(values.size(), 1), values, values), 1, 2);
        chart->AddPlot(plot);
        chart->setFitMargin(margin);

        chart.render();

        for (const int index : {vtkAxis::BOTTOM, vtkAxis::LEFT}) {
            vtkAxis& axis = *chart->GetAxis(index);
            const int along = index == vtkAxis::BOTTOM ? 0 : 1;
            EXPECT_LT(axis.GetMinimum(), axis.GetMaximum());
            const vtkVector2f first = pixelOf(*chart, values.front(), values.front());
            const vtkVector2f last = pixelOf(*chart, values.back(), values.back());
            EXPECT_GE(first[along] - axis.GetPoint1()[along], margin - 0.01F);
            EXPECT_GE(axis.GetPoint2()[along] - last[along], margin - 0.01F);
            const float length = axis.GetPoint2()[along] - axis.GetPoint1()[along];
            EXPECT_LE(axis.GetPoint2()[along] - last[along], 0.6F * length);
        }
    }
}

TEST(ChartXYFitTest, AxesThatAreNotFittedStay)
{
    OffScreenChart<ChartXY> chart(400, 300);
    vtkNew<vtkPlotPoints> plot;
    plot->SetInputData(caseTable({1, 2}, {0.0, 10.0}), 1, 2);
    chart->AddPlot(plot);
    chart->setFitMargin(20.0F);
    vtkAxis& bottom = *chart->GetAxis(vtkAxis::BOTTOM);
    bottom.SetBehavior(vtkAxis::FIXED);
    bottom.SetRange(10.0, 0.0);

    chart->RecalculateBounds();
    chart.render();

    EXPECT_EQ(bottom.GetMinimum(), 10.0);
    EXPECT_EQ(bottom.GetMaximum(), 0.0);
}

} // namespace
