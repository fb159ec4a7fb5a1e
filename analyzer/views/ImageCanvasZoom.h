#pragma once

namespace analyzer {

/// How large a picture is shown and which part of it, whatever its size and that of the canvas are; so canvases that
/// have the same one are in step.
struct ImageCanvasZoom
{
    bool fits = true; ///< as large as the canvas allows; the rest does not count then
    double scale = 1.0; ///< device pixels per pixel of the picture
    double centerX =
        0.5; ///< what is in the middle of the canvas, from 0 at the left edge to 1 at the right one
    double centerY = 0.5; ///< from 0 at the upper edge to 1 at the lower one

    friend bool operator==(const ImageCanvasZoom& left, const ImageCanvasZoom& right)
    {
        return left.fits == right.fits && left.scale == right.scale && left.centerX == right.centerX
            && left.centerY == right.centerY;
    }

    friend bool operator!=(const ImageCanvasZoom& left, const ImageCanvasZoom& right)
    {
        return !(left == right);
    }
};

} // namespace analyzer
