#include <analyzer/views/Scatter3DPoints.h>

#include <vtkDoubleArray.h>
#include <vtkIdTypeArray.h>
#include <vtkSMPTools.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace analyzer {

namespace {

constexpr vtkIdType rowsWorthThread = 20000;

} // namespace

Scatter3DPoints::Scatter3DPoints()
    : m_x(vtkSmartPointer<vtkDoubleArray>::New())
    , m_y(vtkSmartPointer<vtkDoubleArray>::New())
{}

Scatter3DPoints::~Scatter3DPoints() = default;

void Scatter3DPoints::setColumns(Columns columns)
{
    m_columns = std::move(columns);
    m_isProjected = false;
    ++m_version;
    constexpr float nowhere = std::numeric_limits<float>::quiet_NaN();
    m_places.assign(2 * count(), nowhere);
    m_nearness.assign(count(), nowhere);
    // New ones: somebody may still compare the old ones with the old rows.
    m_x = vtkSmartPointer<vtkDoubleArray>::New();
    m_y = vtkSmartPointer<vtkDoubleArray>::New();
    for (vtkDoubleArray* column : {m_x.Get(), m_y.Get()}) {
        column->SetNumberOfValues(static_cast<vtkIdType>(count()));
        column->FillValue(nowhere);
    }
}

void Scatter3DPoints::project(const Chart3DProjection& projection)
{
    if (m_isProjected && projection == m_projection) {
        return;
    }
    m_isProjected = true;
    m_projection = projection;
    ++m_version;
    const auto rows = static_cast<vtkIdType>(count());
    vtkSMPTools::For(0, rows, rowsWorthThread, [this](vtkIdType begin, vtkIdType end) {
        // Not looked up for each row anew, as what is written may seem to change it.
        const Chart3DProjection to = m_projection;
        const float* const x = m_columns[0].data();
        const float* const y = m_columns[1].data();
        const float* const z = m_columns[2].data();
        float* const places = m_places.data();
        float* const nearness = m_nearness.data();
        double* const placeX = m_x->GetPointer(0);
        double* const placeY = m_y->GetPointer(0);
        for (vtkIdType row = begin; row < end; ++row) {
            const Chart3DProjection::Place place = to.place(x[row], y[row], z[row]);
            places[2 * row] = place.x;
            places[2 * row + 1] = place.y;
            nearness[row] = place.nearness;
            placeX[row] = static_cast<double>(place.x);
            placeY[row] = static_cast<double>(place.y);
        }
    });
}

vtkIdType Scatter3DPoints::nearestRow(float x, float y, float reach) const
{
    vtkIdType nearest = -1;
    float least = reach * reach;
    for (std::size_t row = 0; row < count(); ++row) {
        const float dx = m_places[2 * row] - x;
        const float dy = m_places[2 * row + 1] - y;
        const float distance = dx * dx + dy * dy;
        // False for NaN, and nearly always.
        if (!(distance <= least)) {
            continue;
        }
        const bool isHidden = nearest >= 0 && distance == least
            && m_nearness[row] < m_nearness[static_cast<std::size_t>(nearest)];
        if (!isHidden && m_projection.contains(m_places[2 * row], m_places[2 * row + 1])) {
            least = distance;
            nearest = static_cast<vtkIdType>(row);
        }
    }
    return nearest;
}

vtkSmartPointer<vtkIdTypeArray> Scatter3DPoints::rowsWithin(const vtkRectf& part) const
{
    const float left = std::max(part.GetLeft(), m_projection.area().GetLeft());
    const float right = std::min(part.GetRight(), m_projection.area().GetRight());
    const float bottom = std::max(part.GetBottom(), m_projection.area().GetBottom());
    const float top = std::min(part.GetTop(), m_projection.area().GetTop());
    auto rows = vtkSmartPointer<vtkIdTypeArray>::New();
    for (std::size_t row = 0; row < count(); ++row) {
        const float x = m_places[2 * row];
        const float y = m_places[2 * row + 1];
        if (x >= left && x <= right && y >= bottom && y <= top) {
            rows->InsertNextValue(static_cast<vtkIdType>(row));
        }
    }
    return rows;
}

} // namespace analyzer
