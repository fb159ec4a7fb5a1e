#include <dataviews/common/charts/ChartXY.h>
#include <dataviews/common/charts/vtkChartUtils.h>
#include <dataviews/common/views/DataViewInterface.h>

#include <vtkPlotPoints.h>
#include <vtkVariantArray.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <utility>
#include <vector>

#include <tests/support/OffScreenChart.h>
#include <tests/support/caseTable.h>
#include <tests/support/plotSelection.h>

namespace {

using testing::ElementsAre;
using testing::Pair;

class ChartView : public DataViewInterface
{
public:
    OffScreenChart<ChartXY> m_chart{400, 300};
    std::vector<std::pair<int, int>>
        m_behaviors; ///< of the bottom and the left axis, whenever it was drawn
    bool m_failing = false;

    [[nodiscard]] vtkAxis& axis(int index) const { return *m_chart->GetAxis(index); }

    void render() override
    {
        m_behaviors.emplace_back(
            axis(vtkAxis::BOTTOM).GetBehavior(), axis(vtkAxis::LEFT).GetBehavior());
        if (m_failing) {
            throw std::runtime_error("The view cannot be drawn.");
        }
        m_chart.render();
    }

    void suspend() override {}

    void resume() override {}

    void adjustSelectionForMouseClickAtPoint() override {}

    void accept(DataViewVisitorInterface& /*visitor*/) override {}

    [[nodiscard]] std::string domName() const override { return "ChartView"; }

    [[nodiscard]] QWidget& widget() override { throw std::logic_error("The view has no widget."); }

    [[nodiscard]] SerializerInterface& serializer() override
    {
        throw std::logic_error("The view has no settings.");
    }

protected:
    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<MouseMode>> mouseMode() const override
    {
        return {};
    }
};

/// Rows 0 to 3 with the cases 40 to 43; rows 1 and 2 lie close together.
class vtkChartUtilsTest : public testing::Test
{
protected:
    vtkChartUtilsTest()
    {
        m_plot->SetInputData(
            caseTable({40, 41, 42, 43}, {0.0, 5.0, 5.1, 9.0}, {-7.0, 5.0, 5.0, 70.0}), 1, 2);
        m_view.m_chart->AddPlot(m_plot);
        for (vtkAxis* axis : {&bottom(), &left()}) {
            axis->SetRange(2.0, 4.0);
        }
        bottom().SetBehavior(vtkAxis::FIXED);
        left().SetBehavior(vtkAxis::CUSTOM);
    }

    [[nodiscard]] vtkAxis& bottom() const { return m_view.axis(vtkAxis::BOTTOM); }

    [[nodiscard]] vtkAxis& left() const { return m_view.axis(vtkAxis::LEFT); }

    void expectOldBehaviors() const
    {
        EXPECT_EQ(bottom().GetBehavior(), vtkAxis::FIXED);
        EXPECT_EQ(left().GetBehavior(), vtkAxis::CUSTOM);
    }

    static void expectCovers(vtkAxis& axis, double min, double max)
    {
        EXPECT_LE(axis.GetMinimum(), min);
        EXPECT_GE(axis.GetMaximum(), max);
    }

    bool find(float x, float y, vtkAbstractArray& ids, unsigned long long& caseID)
    {
        return vtkChartUtils::caseIDAtPoint(
            *m_plot, ids, {x - 0.2F, y - 0.2F}, {x + 0.2F, y + 0.2F}, caseID);
    }

    ChartView m_view;
    vtkSmartPointer<vtkPlotPoints> m_plot = vtkSmartPointer<vtkPlotPoints>::New();
};

TEST_F(vtkChartUtilsTest, FitDataFitsBothAxesInOneDrawing)
{
    vtkChartUtils::fitData(*m_view.m_chart, m_view);

    expectCovers(bottom(), 0.0, 9.0);
    expectCovers(left(), -7.0, 70.0);
    expectOldBehaviors();
    EXPECT_THAT(m_view.m_behaviors, ElementsAre(Pair(vtkAxis::AUTO, vtkAxis::AUTO)));
}

TEST_F(vtkChartUtilsTest, ResetAxisRangeFitsOneAxisAlone)
{
    vtkChartUtils::resetAxisRange(*m_view.m_chart, left(), m_view);
    expectCovers(left(), -7.0, 70.0);
    EXPECT_EQ(bottom().GetMinimum(), 2.0);
    EXPECT_EQ(bottom().GetMaximum(), 4.0);
    expectOldBehaviors();
    EXPECT_THAT(m_view.m_behaviors, ElementsAre(Pair(vtkAxis::CUSTOM, vtkAxis::AUTO)));
}

TEST_F(vtkChartUtilsTest, BehaviorsComeBackAfterAFailure)
{
    m_view.m_failing = true;

    EXPECT_THROW(vtkChartUtils::fitData(*m_view.m_chart, m_view), std::runtime_error);
    expectOldBehaviors();
    EXPECT_THROW(
        vtkChartUtils::resetAxisRange(*m_view.m_chart, bottom(), m_view), std::runtime_error);
    expectOldBehaviors();
}

TEST_F(vtkChartUtilsTest, CaseIDAtPointFindsTheFirstRowAndLeavesTheSelection)
{
    m_plot->Update();
    for (const bool selectable : {true, false}) {
        SCOPED_TRACE(selectable);
        m_plot->SetSelectable(true);
        selectRows(*m_plot, {3, 0, 1});
        m_plot->SetSelectable(selectable);
        vtkAbstractArray& ids = *m_plot->GetInput()->GetColumn(0);
        unsigned long long caseID = 7;

        EXPECT_FALSE(find(3.0F, 3.0F, ids, caseID));
        EXPECT_EQ(caseID, 7U);
        EXPECT_THAT(selectedRows(*m_plot), ElementsAre(3, 0, 1));
        EXPECT_TRUE(find(9.0F, 70.0F, ids, caseID));
        EXPECT_EQ(caseID, 43U);
        EXPECT_TRUE(find(5.05F, 5.0F, ids, caseID));
        EXPECT_EQ(caseID, 41U);
        EXPECT_THAT(selectedRows(*m_plot), ElementsAre(3, 0, 1));
        EXPECT_EQ(m_plot->GetSelectable(), selectable);
    }
}

TEST_F(vtkChartUtilsTest, CaseIDAtPointCutsToUnsigned32Bits)
{
    const std::pair<vtkVariant, unsigned long long> cases[] = {
        {vtkVariant(-1), 4294967295U},
        {vtkVariant(3e9), 3000000000U},
        {vtkVariant(4294967297LL), 1U},
        {vtkVariant("3000000000"), 3000000000U},
    };
    m_plot->Update();

    for (const auto& [value, expected] : cases) {
        vtkNew<vtkVariantArray> ids;
        ids->SetNumberOfValues(4);
        ids->SetValue(3, value);
        unsigned long long caseID = 7;

        EXPECT_TRUE(find(9.0F, 70.0F, *ids, caseID));
        EXPECT_EQ(caseID, expected) << value.ToString();
    }
    EXPECT_THAT(selectedRows(*m_plot), ElementsAre());
}

} // namespace
