#pragma once

#include <dataviews/common/charts/ChartsExport.h>

#include <vtkVector.h>

class DataViewInterface;
class vtkAbstractArray;
class vtkAxis;
class vtkChart;
class vtkPlot;

/// What chart views do with their charts. Used on the GUI thread.
namespace vtkChartUtils {

/// Fits the bottom and the left axis of \p chart to the data and draws \p view, at once. The axes keep their scaling
/// behaviour.
DATAVIEWS_CHARTS_EXPORT void fitData(vtkChart& chart, DataViewInterface& view);

/// Fits \p axis alone to the data and draws \p view, at once. The axes keep their scaling behaviour.
DATAVIEWS_CHARTS_EXPORT void resetAxisRange(
    vtkChart& chart, vtkAxis& axis, DataViewInterface& view);

/// Finds the first point of \p plot between \p min and \p max and writes its case to \p caseID: the value of \p caseIDs
/// in the point's row as an unsigned 32-bit integer. False, with \p caseID untouched, if there is no point. The plot's
/// selection stays as it is. The corners are in the plot's own coordinates: axis units, shifted and scaled by
/// vtkPlot::GetShiftScale().
DATAVIEWS_CHARTS_EXPORT bool caseIDAtPoint(
    vtkPlot& plot,
    vtkAbstractArray& caseIDs,
    const vtkVector2f& min,
    const vtkVector2f& max,
    unsigned long long& caseID);

} // namespace vtkChartUtils
