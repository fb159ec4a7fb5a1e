#include <analyzer/views/Scatter3DPoints.h>

#include <vtkDoubleArray.h>
#include <vtkIdTypeArray.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace analyzer {

namespace {

constexpr std::size_t depthCount = 65535;
constexpr std::uint16_t notDrawn = depthCount; ///< behind the last depth

} // namespace

Scatter3DPoints::Scatter3DPoints()
    : m_x(vtkSmartPointer<vtkDoubleArray>::New())
    , m_y(vtkSmartPointer<vtkDoubleArray>::New())
{}

Scatter3DPoints::~Scatter3DPoints() = default;

void Scatter3DPoints::setColumns(Columns columns)
{
    m_columns = std::move(columns);
    m_stride = 0;
    ++m_version;
    m_order.clear();
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

void Scatter3DPoints::project(const Chart3DProjection& projection, std::size_t stride, float reach)
{
    const bool isSame = m_stride != 0 && projection == m_projection;
    if (isSame && stride == m_stride && reach == m_reach) {
        return;
    }
    m_projection = projection;
    m_stride = stride;
    m_reach = reach;
    ++m_version;
    if (!isSame) {
        const float* x = m_columns[0].data();
        const float* y = m_columns[1].data();
        const float* z = m_columns[2].data();
        double* placeX = m_x->GetPointer(0);
        double* placeY = m_y->GetPointer(0);
        for (std::size_t row = 0; row < count(); ++row) {
            const Chart3DProjection::Place place = projection.place(x[row], y[row], z[row]);
            m_places[2 * row] = place.x;
            m_places[2 * row + 1] = place.y;
            m_nearness[row] = place.nearness;
            placeX[row] = place.x;
            placeY[row] = place.y;
        }
    }
    order(stride, reach);
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

void Scatter3DPoints::order(std::size_t stride, float reach)
{
    // Sorted by counting: as fine as anybody sees, and a pass over the points takes the same time for any data.
    const vtkRectf& area = m_projection.area();
    const float left = area.GetLeft() - reach;
    const float right = area.GetRight() + reach;
    const float bottom = area.GetBottom() - reach;
    const float top = area.GetTop() + reach;
    constexpr auto largest = static_cast<float>(depthCount - 1);
    std::vector<std::uint32_t> ends(depthCount + 1, 0);
    m_depths.resize(count());
    for (std::size_t row = 0; row < count(); row += stride) {
        const float x = m_places[2 * row];
        const float y = m_places[2 * row + 1];
        const bool isSeen = x >= left && x <= right && y >= bottom && y <= top;
        // Points of the box are nearer than 1 and farther than -1.
        const float depth = std::clamp((m_nearness[row] + 1.0F) * 0.5F * largest, 0.0F, largest);
        m_depths[row] = isSeen ? static_cast<std::uint16_t>(depth) : notDrawn;
        ++ends[m_depths[row]];
    }
    std::uint32_t begin = 0;
    for (std::uint32_t& end : ends) {
        begin += std::exchange(end, begin);
    }
    const std::size_t drawn = ends[notDrawn];
    m_order.resize(drawn);
    for (std::size_t row = 0; row < count(); row += stride) {
        if (m_depths[row] != notDrawn) {
            m_order[ends[m_depths[row]]++] = static_cast<std::uint32_t>(row);
        }
    }
}

} // namespace analyzer
