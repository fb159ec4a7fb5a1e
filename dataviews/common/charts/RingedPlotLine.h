#pragma once

#include <dataviews/common/charts/ChartsExport.h>
#include <dataviews/common/charts/RingedPlot.h>

#include <vtkPlotLine.h>

/// Points joined by a line, the selected ones marked by rings. A single point is drawn without a line.
class DATAVIEWS_CHARTS_EXPORT RingedPlotLine : public RingedPlot<vtkPlotLine>
{
public:
    vtkTypeMacro(RingedPlotLine, vtkPlotLine)

        static RingedPlotLine* New();

    RingedPlotLine(const RingedPlotLine&) = delete;
    RingedPlotLine& operator=(const RingedPlotLine&) = delete;

protected:
    RingedPlotLine();
    ~RingedPlotLine() override;

    /// A single point is no line, of which VTK would complain at every frame.
    bool paintUnmarked(vtkContext2D* painter) override;

    void paintBehindRaster(vtkContext2D* painter) override;
};
