#include <dataviews/common/charts/PolygonMask.h>

#include <algorithm>
#include <cmath>
#include <limits>

PolygonMask::PolygonMask(const std::vector<vtkVector2f>& corners)
{
    m_min.fill(std::numeric_limits<double>::infinity());
    m_max.fill(-std::numeric_limits<double>::infinity());
    if (corners.size() < 3) {
        return;
    }
    std::vector<Edge> edges;
    edges.reserve(corners.size());
    const vtkVector2f* last = &corners.back();
    for (const vtkVector2f& corner : corners) {
        edges.push_back({last->GetX(), last->GetY(), corner.GetX(), corner.GetY()});
        last = &corner;
        for (std::size_t axis = 0; axis < m_min.size(); ++axis) {
            const double place = corner[static_cast<int>(axis)];
            m_min[axis] = std::min(m_min[axis], place);
            m_max[axis] = std::max(m_max[axis], place);
        }
    }
    for (std::size_t axis = 0; axis < m_min.size(); ++axis) {
        const double extent = m_max[axis] - m_min[axis];
        m_cellsPerUnit[axis] = extent > 0.0 ? static_cast<double>(side) / extent : 0.0;
    }
    m_cells.assign(side * side, Cell::Outside);
    sortEdges(edges);
    for (const Edge& edge : edges) {
        markEdge(edge);
    }
    fillInside();
}

void PolygonMask::sortEdges(const std::vector<Edge>& edges)
{
    const auto forEachRow = [this](const Edge& edge, auto function) {
        const std::size_t end = cellOf(std::max(edge.beginY, edge.endY), 1);
        for (std::size_t row = cellOf(std::min(edge.beginY, edge.endY), 1); row <= end; ++row) {
            function(row);
        }
    };
    m_firstEdges.assign(side + 1, 0);
    for (const Edge& edge : edges) {
        forEachRow(edge, [this](std::size_t row) { ++m_firstEdges[row + 1]; });
    }
    for (std::size_t row = 0; row < side; ++row) {
        m_firstEdges[row + 1] += m_firstEdges[row];
    }
    m_edges.resize(m_firstEdges.back());
    std::vector<std::size_t> next(m_firstEdges.begin(), m_firstEdges.end() - 1);
    for (const Edge& edge : edges) {
        forEachRow(edge, [&](std::size_t row) { m_edges[next[row]++] = edge; });
    }
}

void PolygonMask::markEdge(const Edge& edge)
{
    const double low = std::min(edge.beginX, edge.endX);
    const double high = std::max(edge.beginX, edge.endX);
    const double height = edge.endY - edge.beginY;
    const std::size_t firstRow = cellOf(std::min(edge.beginY, edge.endY), 1);
    const std::size_t lastRow = cellOf(std::max(edge.beginY, edge.endY), 1);
    for (std::size_t row = firstRow; row <= lastRow; ++row) {
        double left = low;
        double right = high;
        if (firstRow != lastRow) {
            const auto xAt = [&](std::size_t line) {
                const double y = m_min[1] + static_cast<double>(line) / m_cellsPerUnit[1];
                const double share = (y - edge.beginY) / height;
                return std::clamp(edge.beginX + share * (edge.endX - edge.beginX), low, high);
            };
            const double atBottom = xAt(row);
            const double atTop = xAt(row + 1);
            left = std::min(atBottom, atTop);
            right = std::max(atBottom, atTop);
        }
        // A cell more on either side, for the rounding.
        const std::size_t first = cellOf(left, 0);
        const std::size_t begin = row * side + (first > 0 ? first - 1 : 0);
        const std::size_t end = row * side + std::min(cellOf(right, 0) + 2, side);
        for (std::size_t cell = begin; cell < end; ++cell) {
            m_cells[cell] = Cell::Edge;
        }
    }
}

void PolygonMask::fillInside()
{
    for (std::size_t row = 0; row < side; ++row) {
        Cell* const cells = m_cells.data() + row * side;
        // Cells side by side without an edge between them are all inside or all outside.
        bool isKnown = false;
        bool isFilled = false;
        for (std::size_t column = 0; column < side; ++column) {
            if (cells[column] == Cell::Edge) {
                isKnown = false;
                continue;
            }
            if (!isKnown) {
                constexpr double half = 0.5;
                const double x =
                    m_min[0] + (static_cast<double>(column) + half) / m_cellsPerUnit[0];
                const double y = m_min[1] + (static_cast<double>(row) + half) / m_cellsPerUnit[1];
                isFilled = isInside(x, y, row);
                isKnown = true;
            }
            cells[column] = isFilled ? Cell::Inside : Cell::Outside;
        }
    }
}

bool PolygonMask::isInside(double x, double y, std::size_t row) const
{
    bool isInside = false;
    for (std::size_t index = m_firstEdges[row]; index < m_firstEdges[row + 1]; ++index) {
        const Edge& edge = m_edges[index];
        // Of the two ends of an edge the lower one does not belong to it, as with VTK's polygons.
        if ((edge.beginY < y) != (edge.endY < y)
            && x <= edge.beginX
                    + (y - edge.beginY) * (edge.endX - edge.beginX) / (edge.endY - edge.beginY)) {
            isInside = !isInside;
        }
    }
    return isInside;
}
