#include <dataviews/common/charts/PixelPicture.h>
#include <dataviews/common/charts/PointsInPicture.h>

#include <algorithm>
#include <cmath>

namespace {

/// What VTK's marks are larger than the points, in pixels.
constexpr float markMargin = 2.7F;

OverlapColors overlapColors(
    const std::array<unsigned char, 4>& color, OverlapColors::Deepening deepening)
{
    return {{color[0], color[1], color[2]}, color[3], deepening};
}

void paintDiscs(
    PointRaster& raster,
    PixelPicture& picture,
    const PointRaster::Points& points,
    const PointsInPicture& look,
    const OverlapColors* veil = nullptr)
{
    const MarkerStencil stencil = MarkerStencil::circle(look.markerSize * look.scale);
    if (look.colors != nullptr) {
        raster.paintColoredDiscs(picture, points, stencil, look.colors, look.channels);
        if (veil != nullptr) {
            raster.paintDiscs(picture, points, stencil, *veil);
        }
    } else {
        raster.paintDiscs(
            picture, points, stencil, overlapColors(look.color, look.deepening), veil);
    }
}

} // namespace

int PointsInPicture::margin() const
{
    const float markSize = ring ? static_cast<float>(SelectionRing::size(markerSize, scale))
                                : (markerSize + markMargin) * scale;
    return PointRaster::marginFor(
        static_cast<int>(std::ceil(std::max(markerSize * scale, markSize))));
}

void PointsInPicture::paintPlain(PointRaster& raster, PixelPicture& picture) const
{
    paintDiscs(raster, picture, points, *this);
}

void PointsInPicture::paintMarks(PointRaster& raster, PixelPicture& picture) const
{
    PointRaster::Points selected = points;
    selected.rows = marked;
    selected.rowCount = markedCount;
    if (!ring) {
        raster.paintDiscs(
            picture,
            selected,
            MarkerStencil::circle((markerSize + markMargin) * scale),
            overlapColors(markColor, deepening));
        return;
    }
    SelectionRing mark;
    mark.setColors(*ring);
    raster.paintRings(picture, selected, mark.raster(markerSize, scale));
    if (mark.coversPoints()) {
        return;
    }
    // The selected points lie over the rings of others; in a crowd their discs cover all rings.
    const OverlapColors veil = OverlapColors::veil(ring->ring);
    paintDiscs(raster, picture, selected, *this, &veil);
}
