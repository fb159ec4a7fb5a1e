#include <dataviews/common/charts/RingedPlotLine.h>

#include <vtkObjectFactory.h>

vtkStandardNewMacro(RingedPlotLine)

    RingedPlotLine::RingedPlotLine() = default;

RingedPlotLine::~RingedPlotLine() = default;

bool RingedPlotLine::paintUnmarked(vtkContext2D* painter)
{
    const bool isLine = Points != nullptr && Points->GetNumberOfPoints() > 1;
    return isLine ? vtkPlotLine::Paint(painter) : vtkPlotPoints::Paint(painter);
}
