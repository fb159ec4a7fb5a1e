#pragma once

#include <dataviews/common/charts/ChartsExport.h>
#include <dataviews/common/charts/RasterPlot.h>

#include <vtkPlotPoints.h>

/// Points with VTK's marks of selected ones; very many are painted as one picture.
class DATAVIEWS_CHARTS_EXPORT RasterPlotPoints : public RasterPlot<vtkPlotPoints>
{
public:
    vtkTypeMacro(RasterPlotPoints, vtkPlotPoints)

        static RasterPlotPoints* New();

    RasterPlotPoints(const RasterPlotPoints&) = delete;
    RasterPlotPoints& operator=(const RasterPlotPoints&) = delete;

protected:
    RasterPlotPoints();
    ~RasterPlotPoints() override;
};
