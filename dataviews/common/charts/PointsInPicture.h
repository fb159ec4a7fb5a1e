#pragma once

#include <dataviews/common/charts/ChartsExport.h>
#include <dataviews/common/charts/OverlapColors.h>
#include <dataviews/common/charts/PointRaster.h>
#include <dataviews/common/charts/SelectionRing.h>

#include <vtkType.h>

#include <array>
#include <optional>

class PixelPicture;

/// What a picture of very many points shows, on the screen and in files alike. Owns nothing.
struct PointsInPicture
{
    PointRaster::Points points = {}; ///< all of them
    const unsigned char* colors = nullptr; ///< of each point; null if all have that of the pen
    int channels = 0; ///< of colors
    const vtkIdType* marked = nullptr; ///< the rows of the selected points; null for all
    vtkIdType markedCount = 0;
    std::array<unsigned char, 4> color = {}; ///< of the pen
    std::array<unsigned char, 4> markColor = {}; ///< of the marks, where there are no rings
    std::optional<SelectionRing::Colors> ring;
    float markerSize = 0.0F; ///< pixels of the chart
    float scale = 1.0F; ///< pixels of the picture per pixel of the chart
    OverlapColors::Deepening deepening = OverlapColors::Deepening::Darker;

    /// That a picture needs for the points and the marks.
    [[nodiscard]] DATAVIEWS_CHARTS_EXPORT int margin() const;

    /// Paints the points without marks over what \p picture shows.
    DATAVIEWS_CHARTS_EXPORT void paintPlain(PointRaster& raster, PixelPicture& picture) const;

    /// Paints the marks over the points.
    DATAVIEWS_CHARTS_EXPORT void paintMarks(PointRaster& raster, PixelPicture& picture) const;
};
