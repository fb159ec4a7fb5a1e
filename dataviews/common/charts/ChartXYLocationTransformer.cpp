#include <dataviews/common/charts/ChartXYLocationTransformer.h>

#include <vtkAxis.h>
#include <vtkChart.h>

#include <utility>

ChartXYLocationTransformer::ChartXYLocationTransformer(vtkSmartPointer<vtkChart> chart)
    : m_chart(std::move(chart))
{}

vtkVector2f ChartXYLocationTransformer::getWorldCoordinatesFromPixelLocation(
    const vtkVector2i& pixel) const
{
    return {
        transformPixelLocation(vtkAxis::BOTTOM, 0, pixel.GetX()),
        transformPixelLocation(vtkAxis::LEFT, 1, pixel.GetY())};
}

float ChartXYLocationTransformer::transformPixelLocation(
    int axisIndex, int coordinate, int pixel) const
{
    vtkAxis* axis = m_chart->GetAxis(axisIndex);
    const float start = axis->GetPoint1()[coordinate];
    const auto min = static_cast<float>(axis->GetMinimum());
    return getAxisUnitsPerPixel(axisIndex, coordinate) * (static_cast<float>(pixel) - start) + min;
}

float ChartXYLocationTransformer::getAxisUnitsPerPixel(int axisIndex, int coordinate) const
{
    vtkAxis* axis = m_chart->GetAxis(axisIndex);
    const float start = axis->GetPoint1()[coordinate];
    const float end = axis->GetPoint2()[coordinate];
    const auto min = static_cast<float>(axis->GetMinimum());
    const auto max = static_cast<float>(axis->GetMaximum());
    return (max - min) / (end - start);
}
