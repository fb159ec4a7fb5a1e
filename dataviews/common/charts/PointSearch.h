#pragma once

#include <dataviews/common/charts/ChartsExport.h>
#include <dataviews/common/charts/PointCellIndex.h>

#include <vtkType.h>
#include <vtkVector.h>

#include <vector>

class vtkAxis;
class vtkIdTypeArray;
class vtkPoints2D;
class vtkRectd;

/// Finds points of a plot in the picture as vtkPlotPoints does, but without sorting them, and those close to the mouse
/// without looking at all others.
///
/// An index of the points in view is made when it is asked for first, and made anew when the points or the view have
/// changed. Points that are not finite are never found.
class DATAVIEWS_CHARTS_EXPORT PointSearch
{
public:
    PointSearch();
    PointSearch(const PointSearch&) = delete;
    PointSearch& operator=(const PointSearch&) = delete;
    ~PointSearch();

    /// What both axes show, in the coordinates of points; an empty box if that is nothing.
    [[nodiscard]] static PointCellIndex::Box viewOf(
        vtkAxis* bottom, vtkAxis* left, const vtkRectd& shiftScale);

    /// The rows of the points in \p box in ascending order, for a plot that shows \p view.
    [[nodiscard]] std::vector<vtkIdType> rowsIn(
        vtkPoints2D& points, const PointCellIndex::Box& box, const PointCellIndex::Box& view);

    /// Makes \p selection, in place, the rows in \p box in ascending order.
    void select(
        vtkPoints2D& points,
        const PointCellIndex::Box& box,
        const PointCellIndex::Box& view,
        vtkIdTypeArray& selection);

    /// The leftmost point that is less than \p tolerance away from \p point along each axis, and the first row of
    /// several; -1 if there is none.
    [[nodiscard]] vtkIdType nearest(
        vtkPoints2D& points,
        const vtkVector2f& point,
        const vtkVector2f& tolerance,
        const PointCellIndex::Box& view,
        vtkVector2f* location);

private:
    [[nodiscard]] bool prepareIndex(
        vtkPoints2D& points, const PointCellIndex::Box& box, const PointCellIndex::Box& view);

    /// Fills m_found in ascending order.
    void find(vtkPoints2D& points, const PointCellIndex::Box& box, const PointCellIndex::Box& view);

    std::vector<vtkIdType> m_found; ///< keeps its memory for the next search
    PointCellIndex m_index;
    const void* m_indexOf = nullptr;
    vtkMTimeType m_indexTime = 0;
    vtkIdType m_indexCount = 0;
};
