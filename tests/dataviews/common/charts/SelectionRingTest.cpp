#include <dataviews/common/charts/ChartXY.h>
#include <dataviews/common/charts/RingedPlotLine.h>
#include <dataviews/common/charts/RingedPlotPoints.h>
#include <dataviews/common/charts/SelectionRing.h>

#include <vtkContext2D.h>
#include <vtkImageData.h>
#include <vtkPen.h>
#include <vtkUnsignedCharArray.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <utility>
#include <vector>

#include <tests/support/OffScreenChart.h>
#include <tests/support/RecordingContextDevice2D.h>
#include <tests/support/caseTable.h>
#include <tests/support/plotSelection.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr float markerSize = 20.0F;
constexpr ColorBytes black = {0, 0, 0};
constexpr ColorBytes white = {255, 255, 255};
constexpr ColorBytes red = {255, 0, 0};
constexpr ColorBytes blue = {0, 0, 255};

/// Remembers the places of marks.
class MarkRecorder : public RecordingContextDevice2D
{
public:
    vtkTypeMacro(MarkRecorder, RecordingContextDevice2D) static MarkRecorder* New()
    {
        VTK_STANDARD_NEW_BODY(MarkRecorder);
    }

    std::vector<std::pair<float, float>> marks;

    void DrawPointSprites(
        vtkImageData* sprite, float* points, int count, unsigned char*, int) override
    {
        EXPECT_EQ(Pen->GetWidth(), static_cast<float>(sprite->GetDimensions()[0]))
            << "VTK would scale the mark.";
        for (int i = 0; i < count; ++i, points += 2) {
            marks.emplace_back(points[0], points[1]);
        }
    }
};

TEST(SelectionRingTest, MarksRowsThatThereAreAtFinitePoints)
{
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    constexpr float infinity = std::numeric_limits<float>::infinity();
    const float points[] = {1.0F, 2.0F, nan, 4.0F, 5.0F, -infinity, 7.0F, 8.0F};
    vtkNew<vtkIdTypeArray> rows;
    for (const vtkIdType row : {3, -1, 0, 1, 2, 4}) {
        rows->InsertNextValue(row);
    }
    vtkNew<MarkRecorder> device;
    vtkNew<vtkContext2D> painter;
    painter->Begin(device);
    SelectionRing ring;

    EXPECT_THAT(ring.paint(*painter, points, 4, *rows, markerSize), ElementsAre(3, 0));
    EXPECT_THAT(device->marks, ElementsAre(std::pair(7.0F, 8.0F), std::pair(1.0F, 2.0F)));

    device->marks.clear();
    EXPECT_THAT(ring.paint(*painter, points, 4, *rows, 0.0F), IsEmpty());
    rows->Reset();
    EXPECT_THAT(ring.paint(*painter, points, 4, *rows, markerSize), IsEmpty());
    EXPECT_THAT(device->marks, IsEmpty());
    painter->End();
}

/// Five red points in a row, which nothing joins, on white.
template <class Plot>
class RingedPlotTest : public testing::Test
{
protected:
    RingedPlotTest()
    {
        m_plot->SetInputData(caseTable({1, 2, 3, 4, 5}, {}, {1.0, 1.0, 1.0, 1.0, 1.0}), 1, 2);
        m_plot->SetColor(red[0], red[1], red[2], 255);
        m_plot->SetMarkerStyle(vtkPlotPoints::CIRCLE);
        m_plot->SetMarkerSize(markerSize);
        m_chart->AddPlot(m_plot);
        m_chart->GetAxis(vtkAxis::BOTTOM)->SetGridVisible(false);
        m_chart->GetAxis(vtkAxis::LEFT)->SetGridVisible(false);
        m_chart->setFitMargin(2.0F * markerSize);
    }

    void paint()
    {
        m_chart->GetScene()->SetDirty(true);
        m_chart.render();
    }

    /// The color of the picture \p distance pixels above the middle of the point in \p row.
    [[nodiscard]] ColorBytes colorAt(int row, float distance) const
    {
        const vtkVector2f place = pixelOf(*m_chart, row, 1.0);
        const int x = static_cast<int>(std::floor(place.GetX()));
        const int y = static_cast<int>(std::floor(place.GetY() + distance));
        vtkNew<vtkUnsignedCharArray> pixel;
        m_chart.view().GetRenderWindow()->GetPixelData(x, y, x, y, 0, pixel);
        return {pixel->GetValue(0), pixel->GetValue(1), pixel->GetValue(2)};
    }

    OffScreenChart<ChartXY> m_chart{400, 300};
    vtkSmartPointer<Plot> m_plot = vtkSmartPointer<Plot>::New();
};

using Plots = testing::Types<RingedPlotPoints, RingedPlotLine>;
TYPED_TEST_SUITE(RingedPlotTest, Plots, );

TYPED_TEST(RingedPlotTest, MarksSelectedPointsAndLeavesTheSelection)
{
    constexpr float onRing = markerSize / 2.0F + 2.5F;
    this->paint();
    const int unmarked = this->m_chart.redPixels();
    ASSERT_EQ(this->colorAt(3, 0.0F), red);

    selectRows(*this->m_plot, {});
    this->paint();
    EXPECT_EQ(this->m_chart.redPixels(), unmarked);
    EXPECT_EQ(this->colorAt(3, onRing), white);

    selectRows(*this->m_plot, {3, 99});
    vtkIdTypeArray* const selection = this->m_plot->GetSelection();
    this->m_plot->setSelectionColors({black, white, {}});
    this->paint();
    EXPECT_EQ(this->m_plot->GetSelection(), selection);
    EXPECT_EQ(this->colorAt(3, 0.0F), red) << "An open ring hides its point.";
    EXPECT_EQ(this->colorAt(3, onRing), black);
    EXPECT_EQ(this->colorAt(2, onRing), white) << "This one is not selected.";

    this->m_plot->setSelectionColors({black, white, blue});
    this->paint();
    EXPECT_EQ(this->colorAt(3, 0.0F), blue);
    EXPECT_EQ(this->colorAt(3, onRing), black);
    EXPECT_EQ(this->colorAt(2, 0.0F), red);
}

} // namespace
