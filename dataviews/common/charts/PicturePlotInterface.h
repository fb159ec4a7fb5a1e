#pragma once

class PointsPainter;
class vtkContext2D;

/// A plot that can be painted as one picture, together with plots of its kind right below and above it in the chart.
class PicturePlotInterface
{
public:
    virtual ~PicturePlotInterface() = default;

    /// Whether the plot would paint nothing but a picture with OpenGL into \p painter, which has the transformation of
    /// the plot.
    [[nodiscard]] virtual bool paintsPictureOnly(vtkContext2D& painter) = 0;

    /// The picture that the plot left to be drawn with those of plots above it; null for none, and after this call.
    [[nodiscard]] virtual const PointsPainter* takeHeldPicture() = 0;
};
