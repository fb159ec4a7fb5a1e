#pragma once

#include <dataviews/common/charts/ChartsExport.h>
#include <dataviews/common/charts/ColorPalette.h>
#include <dataviews/common/charts/PointRaster.h>

#include <vtkNew.h>
#include <vtkType.h>

#include <array>
#include <optional>
#include <vector>

class vtkContext2D;
class vtkIdTypeArray;
class vtkImageData;

/// The mark of selected points: a ring with an edge around it, so that it shows on every color, and is not told from the
/// others by its color alone.
class DATAVIEWS_CHARTS_EXPORT SelectionRing
{
public:
    struct Colors
    {
        ColorBytes ring; ///< against the background, as texts are
        ColorBytes edge; ///< as the background
        std::optional<ColorBytes> fill; ///< covers the point; without it the point shows through

        [[nodiscard]] bool operator==(const Colors& other) const
        {
            return ring == other.ring && edge == other.edge && fill == other.fill;
        }
    };

    SelectionRing();
    SelectionRing(const SelectionRing&) = delete;
    SelectionRing& operator=(const SelectionRing&) = delete;
    ~SelectionRing();

    void setColors(const Colors& colors);

    [[nodiscard]] const Colors& colors() const { return m_colors; }

    /// The width of the mark around points of \p markerSize pixels, in whole pixels of a picture that has \p scale of them
    /// per pixel of the chart.
    [[nodiscard]] static int size(float markerSize, float scale = 1.0F);

    /// The mark for pictures of very many points.
    [[nodiscard]] PointRaster::Ring raster(float markerSize, float scale = 1.0F);

    /// Puts the mark around the points in \p rows of \p count \p points, given as X and Y in the painter's coordinates.
    /// Rows that there are not, and points that are not finite, are left out; gives the others. \p markerSize is the
    /// diameter of a point in pixels.
    std::vector<vtkIdType> paint(
        vtkContext2D& painter,
        const float* points,
        vtkIdType count,
        vtkIdTypeArray& rows,
        float markerSize);

    /// Whether the mark is filled, so that it covers its point.
    [[nodiscard]] bool coversPoints() const { return m_colors.fill.has_value(); }

private:
    void drawSprite(float markerSize, float scale);

    Colors m_colors = {{0, 0, 0}, {255, 255, 255}, {}};
    vtkNew<vtkImageData> m_sprite;
    std::array<float, 2> m_spriteFor =
        {}; ///< the marker size and the scale that the sprite was drawn for; 0 if it is out of date
};
