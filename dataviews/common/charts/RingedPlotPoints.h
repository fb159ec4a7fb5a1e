#pragma once

#include <dataviews/common/charts/ChartsExport.h>
#include <dataviews/common/charts/RingedPlot.h>

#include <vtkPlotPoints.h>

/// Points, the selected ones marked by rings.
class DATAVIEWS_CHARTS_EXPORT RingedPlotPoints : public RingedPlot<vtkPlotPoints>
{
public:
    vtkTypeMacro(RingedPlotPoints, vtkPlotPoints)

        static RingedPlotPoints* New();

    RingedPlotPoints(const RingedPlotPoints&) = delete;
    RingedPlotPoints& operator=(const RingedPlotPoints&) = delete;

protected:
    RingedPlotPoints();
    ~RingedPlotPoints() override;
};
