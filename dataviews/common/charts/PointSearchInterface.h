#pragma once

#include <dataviews/common/charts/PointCellIndex.h>

#include <vtkType.h>

#include <vector>

/// A plot that finds its points faster than by looking at each.
class PointSearchInterface
{
public:
    PointSearchInterface(const PointSearchInterface&) = delete;
    PointSearchInterface& operator=(const PointSearchInterface&) = delete;
    virtual ~PointSearchInterface() = default;

    /// The rows of the points in \p box, edges included, in ascending order, of the input as it is now. The box is in the
    /// coordinates of vtkPlot::SelectPoints(), which axes shift and scale.
    [[nodiscard]] virtual std::vector<vtkIdType> rowsIn(const PointCellIndex::Box& box) = 0;

protected:
    PointSearchInterface() = default;
};
