#pragma once

#include <dataviews/common/charts/ChartsExport.h>

#include <vtkType.h>

#include <algorithm>
#include <cstddef>
#include <vector>

/// Tells which points lie in a small part of a view, by cells that cover the view.
///
/// Knows rows and not places: whoever changes points builds it anew. Points may be looked for from another view as long
/// as that lies within the cells.
class DATAVIEWS_CHARTS_EXPORT PointCellIndex
{
public:
    /// With its edges; not for NaN.
    struct Box
    {
        float minX = 0.0F;
        float minY = 0.0F;
        float maxX = 0.0F;
        float maxY = 0.0F;
    };

    PointCellIndex();
    PointCellIndex(const PointCellIndex&) = delete;
    PointCellIndex& operator=(const PointCellIndex&) = delete;
    ~PointCellIndex();

    /// \p points are X and Y of each of \p count; those outside of \p area, which is finite and not empty, and those that
    /// are not finite are in no cell. Takes what is there already away.
    void build(const float* points, vtkIdType count, const Box& area, int columns, int rows);

    /// There are no cells then.
    void clear() { m_columns = m_rows = 0; }

    /// Whether all points in \p box are in cells.
    [[nodiscard]] bool covers(const Box& box) const
    {
        return m_columns > 0 && box.minX >= m_area.minX && box.maxX <= m_area.maxX
            && box.minY >= m_area.minY && box.maxY <= m_area.maxY;
    }

    [[nodiscard]] const Box& area() const { return m_area; }

    /// Calls \p visit with the rows of all points in cells that \p box, which is covered, touches: those in the box and
    /// some around it, in no order.
    template <class Visit>
    void visit(const Box& box, Visit visit) const
    {
        const int left = columnOf(box.minX);
        const int right = columnOf(box.maxX);
        const int top = rowOf(box.maxY);
        for (int row = rowOf(box.minY); row <= top; ++row) {
            for (int column = left; column <= right; ++column) {
                for (const std::vector<int>& last : m_last) {
                    int point = last[static_cast<std::size_t>(row * m_columns + column)];
                    while (point >= 0) {
                        visit(static_cast<vtkIdType>(point));
                        point = m_before[static_cast<std::size_t>(point)];
                    }
                }
            }
        }
    }

private:
    // Both round and never turn back, so that a point in a box is in no cell left of or below the box's.
    [[nodiscard]] int columnOf(float x) const
    {
        return std::min(static_cast<int>((x - m_area.minX) * m_columnsPerUnit), m_columns - 1);
    }

    [[nodiscard]] int rowOf(float y) const
    {
        return std::min(static_cast<int>((y - m_area.minY) * m_rowsPerUnit), m_rows - 1);
    }

    void addPoints(const float* points, vtkIdType begin, vtkIdType end, std::vector<int>& last);

    Box m_area;
    int m_columns = 0;
    int m_rows = 0;
    float m_columnsPerUnit = 0.0F;
    float m_rowsPerUnit = 0.0F;
    std::vector<std::vector<int>> m_last; ///< points in each cell, by the thread that found them
    std::vector<int> m_before; ///< of each point the one before it in the same cell; -1 for none
};
