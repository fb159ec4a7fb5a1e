#include <dataviews/common/charts/RasterPlotPoints.h>

#include <vtkObjectFactory.h>

vtkStandardNewMacro(RasterPlotPoints)

    RasterPlotPoints::RasterPlotPoints() = default;

RasterPlotPoints::~RasterPlotPoints() = default;
