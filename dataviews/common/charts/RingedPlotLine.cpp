#include <dataviews/common/charts/RingedPlotLine.h>

#include <vtkObjectFactory.h>

#include <utility>

vtkStandardNewMacro(RingedPlotLine)

    RingedPlotLine::RingedPlotLine() = default;

RingedPlotLine::~RingedPlotLine() = default;

bool RingedPlotLine::paintUnmarked(vtkContext2D* painter)
{
    const bool isLine = Points != nullptr && Points->GetNumberOfPoints() > 1;
    return isLine ? vtkPlotLine::Paint(painter) : vtkPlotPoints::Paint(painter);
}

void RingedPlotLine::paintBehindRaster(vtkContext2D* painter)
{
    vtkIdTypeArray* const selection = std::exchange(Selection, nullptr);
    const int style = std::exchange(MarkerStyle, static_cast<int>(NONE));
    vtkPlotLine::Paint(painter);
    MarkerStyle = style;
    Selection = selection;
}
