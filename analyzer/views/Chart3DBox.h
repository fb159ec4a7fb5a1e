#pragma once

#include <analyzer/views/Chart3DAxis.h>
#include <analyzer/views/Chart3DProjection.h>

#include <dataviews/common/charts/ColorPalette.h>

#include <vtkNew.h>
#include <vtkTextProperty.h>
#include <vtkVector.h>

#include <array>
#include <cstddef>

class vtkContext2D;

namespace analyzer {

/// The box around the points of a chart in three dimensions: the three faces behind the points with a grid, and the
/// axes with ticks, numbers and titles along edges at the outside, where no point hides them.
class Chart3DBox
{
public:
    struct Look
    {
        ColorBytes text = {0, 0, 0};
        ColorBytes edge = {100, 100, 100};
        ColorBytes grid = {220, 220, 220};
        float pixelRatio = 1.0F; ///< device pixels per device-independent one
    };

    using Axes = std::array<Chart3DAxis, 3>;

    Chart3DBox();
    Chart3DBox(const Chart3DBox&) = delete;
    Chart3DBox& operator=(const Chart3DBox&) = delete;
    ~Chart3DBox();

    void setAxes(Axes axes);

    [[nodiscard]] const Axes& axes() const { return m_axes; }

    void setLook(const Look& look);

    /// In pixels of the scene. To be painted before the points.
    void paint(vtkContext2D& painter, const Chart3DProjection& projection);

    /// The room that numbers and titles want on each side of the box, in device pixels.
    [[nodiscard]] float margin() const;

private:
    using Point = std::array<float, 3>;

    /// An edge of the box that carries an axis, on the screen.
    struct Edge
    {
        Point begin; ///< of the axis, in the box
        Point end;
        vtkVector2f direction; ///< of length 1
        vtkVector2f outward; ///< likewise, across
        float length; ///< pixels
    };

    void paintGrid(vtkContext2D& painter, const Chart3DProjection& projection, const Point& back);
    void paintFaceEdges(
        vtkContext2D& painter, const Chart3DProjection& projection, const Point& back);
    void paintAxis(
        vtkContext2D& painter,
        const Chart3DProjection& projection,
        const Point& back,
        std::size_t axis);
    [[nodiscard]] static Edge edgeOf(
        const Chart3DProjection& projection, const Point& back, std::size_t axis);

    Axes m_axes;
    Look m_look;
    vtkNew<vtkTextProperty> m_labelText;
    vtkNew<vtkTextProperty> m_titleText;
};

} // namespace analyzer
