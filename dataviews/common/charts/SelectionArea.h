#pragma once

#include <dataviews/common/charts/ChartsExport.h>
#include <dataviews/common/charts/DrawnPointsInterface.h>
#include <dataviews/common/charts/PolygonMask.h>

#include <vtkVector.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

class vtkPlot;

/// A rectangle or a polygon in which points are picked, as VTK's charts pick them: a point upon the edge of a rectangle
/// is in it.
class DATAVIEWS_CHARTS_EXPORT SelectionArea
{
public:
    struct Count
    {
        std::size_t points = 0; ///< in the area
        std::size_t marked = 0; ///< those of them that are marked
    };

    /// Between two opposite corners.
    static SelectionArea rectangle(const vtkVector2f& corner, const vtkVector2f& opposite);

    /// The last of \p corners is joined with the first.
    static SelectionArea polygon(std::vector<vtkVector2f> corners);

    [[nodiscard]] bool isPolygon() const { return m_isPolygon; }

    /// Two of a rectangle, as they were given.
    [[nodiscard]] const std::vector<vtkVector2f>& corners() const { return m_corners; }

    /// The same area, given in pixels of the scene, in the coordinates of \p plot, which belongs to a chart.
    [[nodiscard]] SelectionArea inPlot(vtkPlot& plot) const;

    /// Counts \p points, a nonzero byte of \p marks for each that is marked.
    [[nodiscard]] Count count(
        const DrawnPointsInterface::Coordinates& points, const std::uint8_t* marks) const;

    /// Calls \p function with the row of each of \p points in the area, in ascending order.
    template <class Function>
    void forEach(const DrawnPointsInterface::Coordinates& points, Function function) const
    {
        const auto visit = [&](const auto& contains) {
            for (vtkIdType row = 0; row < points.count; ++row) {
                if (contains(points.values[2 * row], points.values[2 * row + 1])) {
                    function(row);
                }
            }
        };
        if (m_isPolygon) {
            const PolygonMask mask(m_corners);
            visit([&mask](float x, float y) { return mask.contains(x, y); });
        } else {
            visit(within());
        }
    }

private:
    /// Without branches, so that a compiler may compare many points at once.
    struct Within
    {
        vtkVector2f min;
        vtkVector2f max;

        [[nodiscard]] bool operator()(float x, float y) const
        {
            return (static_cast<unsigned>(x >= min.GetX()) & static_cast<unsigned>(x <= max.GetX())
                    & static_cast<unsigned>(y >= min.GetY())
                    & static_cast<unsigned>(y <= max.GetY()))
                != 0;
        }
    };

    SelectionArea(bool isPolygon, std::vector<vtkVector2f> corners);
    [[nodiscard]] Within within() const;

    bool m_isPolygon;
    std::vector<vtkVector2f> m_corners;
};
