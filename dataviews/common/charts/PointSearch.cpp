#include <dataviews/common/charts/PointSearch.h>

#include <vtkAxis.h>
#include <vtkIdTypeArray.h>
#include <vtkPoints2D.h>
#include <vtkRect.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>

namespace {

using Box = PointCellIndex::Box;

constexpr int cellsAcross = 128; ///< some 10 pixels wide
constexpr int cellsUp = 96;
constexpr float largestShare = 0.1F; ///< of the view, for which cells are worth it
constexpr float margin = 0.25F; ///< around the view, so that a moved one needs no other cells
constexpr vtkIdType blockSize = 1024;

const float* coordinatesOf(vtkPoints2D& points)
{
    return static_cast<const float*>(points.GetVoidPointer(0));
}

bool isIn(const float* point, const Box& box)
{
    return point[0] >= box.minX && point[0] <= box.maxX && point[1] >= box.minY
        && point[1] <= box.maxY;
}

float widthOf(const Box& box)
{
    return box.maxX - box.minX;
}

float heightOf(const Box& box)
{
    return box.maxY - box.minY;
}

/// Calls \p found with the rows of the points in \p box, upward.
template <class Found>
void forEachIn(const float* points, vtkIdType count, const Box& box, Found found)
{
    // Several points at a time first; mostly a block has none.
    std::array<unsigned char, blockSize> isInside{};
    for (vtkIdType begin = 0; begin < count; begin += blockSize) {
        const vtkIdType size = std::min(blockSize, count - begin);
        const float* const block = points + 2 * begin;
        int inside = 0;
        for (vtkIdType i = 0; i < size; ++i) {
            const int is = static_cast<int>(block[2 * i] >= box.minX)
                & static_cast<int>(block[2 * i] <= box.maxX)
                & static_cast<int>(block[2 * i + 1] >= box.minY)
                & static_cast<int>(block[2 * i + 1] <= box.maxY);
            isInside[static_cast<std::size_t>(i)] = static_cast<unsigned char>(is);
            inside += is;
        }
        if (inside == 0) {
            continue;
        }
        for (vtkIdType i = 0; i < size; ++i) {
            if (isInside[static_cast<std::size_t>(i)] != 0) {
                found(begin + i);
            }
        }
    }
}

} // namespace

PointSearch::PointSearch() = default;

PointSearch::~PointSearch() = default;

Box PointSearch::viewOf(vtkAxis* bottom, vtkAxis* left, const vtkRectd& shiftScale)
{
    if (bottom == nullptr || left == nullptr) {
        return {};
    }
    const auto ends = [](vtkAxis& axis, double shift, double scale) {
        const auto first = static_cast<float>((axis.GetMinimum() + shift) * scale);
        const auto last = static_cast<float>((axis.GetMaximum() + shift) * scale);
        return std::minmax({first, last});
    };
    const auto [minX, maxX] = ends(*bottom, shiftScale.GetX(), shiftScale.GetWidth());
    const auto [minY, maxY] = ends(*left, shiftScale.GetY(), shiftScale.GetHeight());
    return {minX, minY, maxX, maxY};
}

bool PointSearch::prepareIndex(vtkPoints2D& points, const Box& box, const Box& view)
{
    const float width = widthOf(view);
    const float height = heightOf(view);
    // False for what is not finite, too.
    const bool isWorth = width > 0.0F && height > 0.0F && widthOf(box) <= width * largestShare
        && heightOf(box) <= height * largestShare;
    if (!isWorth) {
        return false;
    }
    const Box area{
        view.minX - width * margin,
        view.minY - height * margin,
        view.maxX + width * margin,
        view.maxY + height * margin};
    const bool isFine = [&] {
        constexpr float most = 2.0F;
        return widthOf(m_index.area()) <= widthOf(area) * most
            && heightOf(m_index.area()) <= heightOf(area) * most;
    }();
    const bool isOld = m_indexOf != &points || m_indexTime != points.GetMTime()
        || m_indexCount != points.GetNumberOfPoints();
    if (isOld || !isFine || !m_index.covers(box)) {
        const bool canCover = std::isfinite(widthOf(area)) && std::isfinite(heightOf(area))
            && cellsAcross / widthOf(area) < std::numeric_limits<float>::max()
            && cellsUp / heightOf(area) < std::numeric_limits<float>::max() && box.minX >= area.minX
            && box.maxX <= area.maxX && box.minY >= area.minY && box.maxY <= area.maxY
            && points.GetNumberOfPoints() <= std::numeric_limits<int>::max();
        if (!canCover) {
            return false;
        }
        m_index.build(
            coordinatesOf(points), points.GetNumberOfPoints(), area, cellsAcross, cellsUp);
        m_indexOf = &points;
        m_indexTime = points.GetMTime();
        m_indexCount = points.GetNumberOfPoints();
    }
    return true;
}

std::vector<vtkIdType> PointSearch::rowsIn(vtkPoints2D& points, const Box& box, const Box& view)
{
    find(points, box, view);
    return m_found;
}

void PointSearch::find(vtkPoints2D& points, const Box& box, const Box& view)
{
    const float* const coordinates = coordinatesOf(points);
    std::vector<vtkIdType>& rows = m_found;
    rows.clear();
    if (prepareIndex(points, box, view)) {
        m_index.visit(box, [&](vtkIdType row) {
            if (isIn(coordinates + 2 * row, box)) {
                rows.push_back(row);
            }
        });
        std::sort(rows.begin(), rows.end());
    } else {
        forEachIn(coordinates, points.GetNumberOfPoints(), box, [&](vtkIdType row) {
            rows.push_back(row);
        });
    }
}

void PointSearch::select(
    vtkPoints2D& points, const Box& box, const Box& view, vtkIdTypeArray& selection)
{
    find(points, box, view);
    selection.SetNumberOfValues(static_cast<vtkIdType>(m_found.size()));
    std::copy(m_found.begin(), m_found.end(), selection.GetPointer(0));
    selection.Modified();
}

vtkIdType PointSearch::nearest(
    vtkPoints2D& points,
    const vtkVector2f& point,
    const vtkVector2f& tolerance,
    const Box& view,
    vtkVector2f* location)
{
    const Box box{
        point.GetX() - tolerance.GetX(),
        point.GetY() - tolerance.GetY(),
        point.GetX() + tolerance.GetX(),
        point.GetY() + tolerance.GetY()};
    const float* const coordinates = coordinatesOf(points);
    vtkIdType nearest = -1;
    find(points, box, view);
    for (const vtkIdType row : m_found) {
        const float* const place = coordinates + 2 * row;
        const bool isWithin = place[0] > box.minX && place[0] < box.maxX && place[1] > box.minY
            && place[1] < box.maxY;
        if (isWithin && (nearest < 0 || place[0] < coordinates[2 * nearest])) {
            nearest = row;
        }
    }
    if (nearest >= 0 && location != nullptr) {
        location->Set(coordinates[2 * nearest], coordinates[2 * nearest + 1]);
    }
    return nearest;
}
