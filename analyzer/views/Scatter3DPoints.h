#pragma once

#include <analyzer/views/Chart3DProjection.h>

#include <vtkSmartPointer.h>
#include <vtkType.h>

#include <array>
#include <cstdint>
#include <vector>

class vtkDoubleArray;
class vtkIdTypeArray;

namespace analyzer {

/// Many points in the box of a chart in three dimensions, where they are drawn and how near they are.
///
/// All in typed passes over arrays, by some threads: a million points are projected in some thousandths of a second. A
/// point with a place that is NaN is not drawn and not found. Used on the GUI thread.
class Scatter3DPoints
{
public:
    /// Along X, Y and Z, in the box; all equally long.
    using Columns = std::array<std::vector<float>, 3>;

    Scatter3DPoints();
    Scatter3DPoints(const Scatter3DPoints&) = delete;
    Scatter3DPoints& operator=(const Scatter3DPoints&) = delete;
    ~Scatter3DPoints();

    /// Until they are projected, they are drawn nowhere.
    void setColumns(Columns columns);

    [[nodiscard]] std::size_t count() const { return m_columns[0].size(); }

    /// Brings places() and nearness() up to date. Cheap if nothing changed.
    void project(const Chart3DProjection& projection);

    /// Counts the changes of places().
    [[nodiscard]] std::uint64_t version() const { return m_version; }

    /// X and Y of each point, in pixels of the scene; NaN where it is nowhere.
    [[nodiscard]] const std::vector<float>& places() const { return m_places; }

    /// The same as columns; until setColumns() they stay the same objects and are filled anew.
    [[nodiscard]] const vtkSmartPointer<vtkDoubleArray>& placesX() const { return m_x; }

    [[nodiscard]] const vtkSmartPointer<vtkDoubleArray>& placesY() const { return m_y; }

    /// How near each point is; see Chart3DProjection.
    [[nodiscard]] const std::vector<float>& nearness() const { return m_nearness; }

    /// The row in the area that is nearest to this place of the scene, at most \p reach pixels away; of several at the
    /// same place the one in front; -1 if there is none.
    [[nodiscard]] vtkIdType nearestRow(float x, float y, float reach) const;

    /// The rows in this part of the area, in ascending order.
    [[nodiscard]] vtkSmartPointer<vtkIdTypeArray> rowsWithin(const vtkRectf& part) const;

private:
    Columns m_columns;
    Chart3DProjection m_projection;
    bool m_isProjected = false;
    std::uint64_t m_version = 0;
    std::vector<float> m_places;
    std::vector<float> m_nearness;
    vtkSmartPointer<vtkDoubleArray> m_x;
    vtkSmartPointer<vtkDoubleArray> m_y;
};

} // namespace analyzer
