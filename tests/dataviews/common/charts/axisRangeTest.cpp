#include <dataviews/common/charts/ChartXY.h>
#include <dataviews/common/charts/axisRange.h>

#include <vtkContextMouseEvent.h>
#include <vtkPlotPoints.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include <tests/support/OffScreenChart.h>
#include <tests/support/caseTable.h>

namespace {

using Range = ValueRange_s<double>;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

TEST(AxisRangeTest, RangesThatVtkCannotDrawGiveTheClosestOneThatItCan)
{
    const struct
    {
        Range range;
        Range expected;
        double tolerance;
    } cases[] = {
        {{0.0, 10.0}, {0.0, 10.0}, 0.0},
        {{10.0, 0.0}, {10.0, 0.0}, 0.0},
        {{1e6, 1e6 + 1.0}, {1e6, 1e6 + 1.0}, 0.0},
        {{-1e300, 1e300}, {-1e300, 1e300}, 0.0},
        {{1.0, std::nextafter(1.0, 2.0)}, {1.0, 1.0}, 3e-12},
        {{5.0, 5.0}, {5.0, 5.0}, 2e-11},
        {{0.0, 0.0}, {0.0, 0.0}, 1e-299},
        {{1e-320, 2e-320}, {0.0, 0.0}, 1e-299},
        {{nan, 1.0}, {0.0, 1.0}, 0.0},
        {{1.0, nan}, {1.0, 2.0}, 0.0},
        {{nan, nan}, {0.0, 1.0}, 0.0},
        {{0.0, infinity}, {0.0, 1e300}, 0.0},
        {{nan, -infinity}, {-1e300, -1e300}, 1e289},
        {{infinity, infinity}, {1e300, 1e300}, 1e289},
        {{infinity, -infinity}, {1e300, -1e300}, 0.0},
        {{-1.7e308, 3.0}, {-1e300, 3.0}, 0.0},
    };

    for (const auto& [range, expected, tolerance] : cases) {
        SCOPED_TRACE(testing::Message() << range.min << " to " << range.max);
        const Range divisible = divisibleRange(range);
        EXPECT_TRUE(canBeDivided(divisible));
        EXPECT_EQ(divisible.min > divisible.max, range.min > range.max);
        EXPECT_NEAR(divisible.min, expected.min, tolerance);
        EXPECT_NEAR(divisible.max, expected.max, tolerance);
        EXPECT_EQ(canBeDivided(range), divisible == range);
    }
}

/// A hang is a failure, too.
TEST(AxisRangeTest, ChartsDrawEveryRangeAndEveryValue)
{
    const Range ranges[] = {
        {1.0, std::nextafter(1.0, 2.0)},
        {0.0, infinity},
        {nan, 1.0},
        {-1e308, 1e308},
        {1e-320, 2e-320},
        {5.0, 5.0},
        {1e20, 1e20 + 16384.0},
    };
    for (const int behavior : {vtkAxis::FIXED, vtkAxis::AUTO}) {
        for (const Range& range : ranges) {
            SCOPED_TRACE(
                testing::Message()
                << "behavior " << behavior << ", " << range.min << " to " << range.max);
            OffScreenChart<ChartXY> chart(300, 200);
            vtkNew<vtkPlotPoints> plot;
            plot->SetInputData(caseTable({1, 2}, {range.min, range.max}), 1, 2);
            chart->AddPlot(plot);
            vtkAxis* const axis = chart->GetAxis(vtkAxis::BOTTOM);
            axis->SetBehavior(behavior);
            chart.render();

            axis->SetRange(range.min, range.max);
            chart.render();

            EXPECT_TRUE(canBeDivided({axis->GetMinimum(), axis->GetMaximum()}));
            EXPECT_LE(axis->GetTickPositions()->GetNumberOfValues(), 200);
        }
    }
}

TEST(AxisRangeTest, ZoomingInForEverEndsAtTheNarrowestRange)
{
    OffScreenChart<ChartXY> chart(4000, 200);
    vtkNew<vtkPlotPoints> plot;
    plot->SetInputData(caseTable({1, 2}, {1.0, 2.0}), 1, 2);
    chart->AddPlot(plot);
    chart.render();
    vtkContextMouseEvent wheel;

    constexpr int turns = 500;
    for (int turn = 0; turn < turns; ++turn) {
        chart->MouseWheelEvent(wheel, 1);
    }

    vtkAxis* const axis = chart->GetAxis(vtkAxis::BOTTOM);
    EXPECT_TRUE(canBeDivided({axis->GetMinimum(), axis->GetMaximum()}));
    EXPECT_LT(axis->GetMaximum() - axis->GetMinimum(), 1e-11);

    chart->SetActionToButton(vtkChart::ZOOM, vtkContextMouseEvent::LEFT_BUTTON);
    vtkContextMouseEvent mouse;
    mouse.SetButton(vtkContextMouseEvent::LEFT_BUTTON);
    for (float zoom = 0.0F; zoom < 10.0F; ++zoom) {
        mouse.SetPos(vtkVector2f(1500.0F + zoom, 100.0F));
        chart->MouseButtonPressEvent(mouse);
        mouse.SetPos(vtkVector2f(1501.0F + zoom, 101.0F));
        chart->MouseMoveEvent(mouse);
        chart->MouseButtonReleaseEvent(mouse);
        chart.render();
        EXPECT_TRUE(canBeDivided({axis->GetMinimum(), axis->GetMaximum()}));
    }
}

} // namespace
