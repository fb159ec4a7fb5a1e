#pragma once

#include <dataviews/common/charts/ChartsExport.h>

#include <vtkVector.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

/// Answers for many points whether they lie in a polygon, at a cost that hardly depends on the number of its corners.
///
/// A grid over the polygon says of most places at once whether they are inside; only points in cells that an edge goes
/// through are compared with edges, those at their height. The answer is that of all edges, never an approximation.
/// Where the polygon goes around a place twice, that is outside again. Immutable.
class DATAVIEWS_CHARTS_EXPORT PolygonMask
{
public:
    /// \p corners are finite; the last one is joined with the first. With less than three nothing is inside.
    explicit PolygonMask(const std::vector<vtkVector2f>& corners);

    /// No point is inside that has a NaN.
    [[nodiscard]] bool contains(float x, float y) const
    {
        if (!(x >= m_min[0] && x <= m_max[0] && y >= m_min[1] && y <= m_max[1])) {
            return false;
        }
        const std::size_t row = cellOf(y, 1);
        const Cell cell = m_cells[row * side + cellOf(x, 0)];
        return cell == Cell::Inside || (cell == Cell::Edge && isInside(x, y, row));
    }

private:
    enum class Cell : std::uint8_t
    {
        Outside,
        Inside,
        Edge
    };

    struct Edge
    {
        double beginX;
        double beginY;
        double endX;
        double endY;
    };

    static constexpr std::size_t side =
        256; ///< of the grid, in cells; all of it fits into a fast cache

    /// Never decreasing in \p place, which lies within the polygon's bounds: an edge between two places goes through
    /// cells between theirs.
    [[nodiscard]] std::size_t cellOf(double place, std::size_t axis) const
    {
        const auto cell = static_cast<std::size_t>((place - m_min[axis]) * m_cellsPerUnit[axis]);
        return cell < side ? cell : side - 1;
    }

    void sortEdges(const std::vector<Edge>& edges);
    void markEdge(const Edge& edge);
    void fillInside();
    [[nodiscard]] bool isInside(double x, double y, std::size_t row) const;

    std::array<double, 2> m_min = {};
    std::array<double, 2> m_max = {};
    std::array<double, 2> m_cellsPerUnit = {};
    std::vector<Cell> m_cells; ///< row by row
    std::vector<Edge> m_edges; ///< by the rows that they go through, in each once
    std::vector<std::size_t> m_firstEdges; ///< of each row, and the end of the last one
};
