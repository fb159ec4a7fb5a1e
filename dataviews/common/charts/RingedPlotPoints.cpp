#include <dataviews/common/charts/RingedPlotPoints.h>

#include <vtkObjectFactory.h>

vtkStandardNewMacro(RingedPlotPoints)

    RingedPlotPoints::RingedPlotPoints() = default;

RingedPlotPoints::~RingedPlotPoints() = default;
