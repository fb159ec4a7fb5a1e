#pragma once

#include <dataviews/common/charts/ChartsExport.h>

#include <vtkSmartPointer.h>
#include <vtkVector.h>

class vtkChart;

/// Maps places in a chart from pixels to the units of its bottom and left axes.
class DATAVIEWS_CHARTS_EXPORT ChartXYLocationTransformer
{
public:
    explicit ChartXYLocationTransformer(vtkSmartPointer<vtkChart> chart);

    /// \p pixel is in the scene's device pixels. Places outside the axes lie on their straight continuation. Valid
    /// once the chart was painted.
    [[nodiscard]] vtkVector2f getWorldCoordinatesFromPixelLocation(const vtkVector2i& pixel) const;

private:
    [[nodiscard]] float transformPixelLocation(int axisIndex, int coordinate, int pixel) const;
    [[nodiscard]] float getAxisUnitsPerPixel(int axisIndex, int coordinate) const;

    vtkSmartPointer<vtkChart> m_chart;
};
