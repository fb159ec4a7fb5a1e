#pragma once

#include <dataviews/common/charts/ChartsExport.h>

#include <cstddef>
#include <vector>

/// What a picture shows of a line, in the coordinates of its vertices.
struct LineSight
{
    float left; ///< the smallest X in the picture
    float right; ///< the largest one
    float columnWidth; ///< of a pixel; positive
};

/// The vertices, as their places in the line from 0 up and in its order, that give the picture of the whole line.
///
/// \p points are the X and Y of \p count vertices, finite numbers that ascend by X. Of those in one column of pixels
/// the first, the lowest, the highest and the last are given; of those beside the picture the nearest on each side.
[[nodiscard]] DATAVIEWS_CHARTS_EXPORT std::vector<std::size_t> lineInSight(
    const float* points, std::size_t count, const LineSight& sight);
