#include <dataviews/common/charts/PointCellIndex.h>

#include <vtkSMPTools.h>

PointCellIndex::PointCellIndex() = default;

PointCellIndex::~PointCellIndex() = default;

void PointCellIndex::build(
    const float* points, vtkIdType count, const Box& area, int columns, int rows)
{
    m_area = area;
    m_columns = columns;
    m_rows = rows;
    m_columnsPerUnit = static_cast<float>(columns) / (area.maxX - area.minX);
    m_rowsPerUnit = static_cast<float>(rows) / (area.maxY - area.minY);
    m_before.resize(static_cast<std::size_t>(count));
    constexpr vtkIdType pointsWorthThread = 50000;
    const vtkIdType parts = std::clamp(
        count / pointsWorthThread,
        vtkIdType(1),
        static_cast<vtkIdType>(std::max(1, vtkSMPTools::GetEstimatedNumberOfThreads())));
    m_last.resize(static_cast<std::size_t>(parts));
    vtkSMPTools::For(0, parts, 1, [&](vtkIdType begin, vtkIdType end) {
        for (vtkIdType part = begin; part < end; ++part) {
            addPoints(
                points,
                count * part / parts,
                count * (part + 1) / parts,
                m_last[static_cast<std::size_t>(part)]);
        }
    });
}

void PointCellIndex::addPoints(
    const float* points, vtkIdType begin, vtkIdType end, std::vector<int>& last)
{
    last.assign(static_cast<std::size_t>(m_columns) * static_cast<std::size_t>(m_rows), -1);
    const Box area = m_area;
    int* const before = m_before.data();
    for (vtkIdType i = begin; i < end; ++i) {
        const float x = points[2 * i];
        const float y = points[2 * i + 1];
        // False for NaN, too.
        if (x >= area.minX && x <= area.maxX && y >= area.minY && y <= area.maxY) {
            int& point = last[static_cast<std::size_t>(rowOf(y) * m_columns + columnOf(x))];
            before[i] = point;
            point = static_cast<int>(i);
        }
    }
}
