#include <dataviews/common/charts/ChartXYLocationTransformer.h>

#include <vtkAxis.h>
#include <vtkChartXY.h>

#include <gtest/gtest.h>

namespace {

TEST(ChartXYLocationTransformerTest, MapsPixelsOnTheStraightLineThroughTheEndsOfTheAxes)
{
    const auto chart = vtkSmartPointer<vtkChartXY>::New();
    vtkAxis* const bottom = chart->GetAxis(vtkAxis::BOTTOM);
    vtkAxis* const left = chart->GetAxis(vtkAxis::LEFT);
    bottom->SetPoint1(60.0F, 40.0F);
    bottom->SetPoint2(460.0F, 40.0F);
    bottom->SetRange(-10.0, 30.0);
    left->SetPoint1(60.0F, 40.0F);
    left->SetPoint2(60.0F, 240.0F);
    left->SetRange(5.0, 4.0);

    struct Case
    {
        vtkVector2i pixel;
        float x;
        float y;
    };

    const Case cases[] = {
        {{60, 40}, -10.0F, 5.0F},
        {{460, 240}, 30.0F, 4.0F},
        {{160, 140}, 0.0F, 4.5F},
        {{0, 440}, -16.0F, 3.0F}, // outside the axes
    };
    const ChartXYLocationTransformer transformer(chart);

    for (const Case& c : cases) {
        const vtkVector2f world = transformer.getWorldCoordinatesFromPixelLocation(c.pixel);
        EXPECT_FLOAT_EQ(world.GetX(), c.x) << c.pixel.GetX();
        EXPECT_FLOAT_EQ(world.GetY(), c.y) << c.pixel.GetY();
    }

    // The ends of the range become single-precision numbers before they are subtracted.
    bottom->SetRange(16777216.0, 16777217.0);
    EXPECT_EQ(transformer.getWorldCoordinatesFromPixelLocation({160, 40}).GetX(), 16777216.0F);
    EXPECT_EQ(transformer.getWorldCoordinatesFromPixelLocation({460, 40}).GetX(), 16777216.0F);
}

} // namespace
