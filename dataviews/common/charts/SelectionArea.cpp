#include <dataviews/common/charts/SelectionArea.h>

#include <vtkContextTransform.h>
#include <vtkNew.h>
#include <vtkPlot.h>
#include <vtkTransform2D.h>

#include <algorithm>
#include <utility>

namespace {

/// \p contains says so for the two coordinates of a point.
template <class Contains>
SelectionArea::Count countPoints(
    const DrawnPointsInterface::Coordinates& points,
    const std::uint8_t* marks,
    const Contains& contains)
{
    SelectionArea::Count count;
    for (vtkIdType row = 0; row < points.count; ++row) {
        const auto isIn =
            static_cast<std::size_t>(contains(points.values[2 * row], points.values[2 * row + 1]));
        count.points += isIn;
        count.marked += isIn & static_cast<std::size_t>(marks[row] != 0);
    }
    return count;
}

} // namespace

SelectionArea SelectionArea::rectangle(const vtkVector2f& corner, const vtkVector2f& opposite)
{
    return {false, {corner, opposite}};
}

SelectionArea SelectionArea::polygon(std::vector<vtkVector2f> corners)
{
    return {true, std::move(corners)};
}

SelectionArea::SelectionArea(bool isPolygon, std::vector<vtkVector2f> corners)
    : m_isPolygon(isPolygon)
    , m_corners(std::move(corners))
{}

SelectionArea SelectionArea::inPlot(vtkPlot& plot) const
{
    vtkTransform2D& toScene = *vtkContextTransform::SafeDownCast(plot.GetParent())->GetTransform();
    std::vector<vtkVector2f> corners(m_corners.size());
    const auto count = static_cast<int>(corners.size());
    // In two ways, for what VTK does with the same numbers is to be the same to the last bit.
    if (m_isPolygon) {
        const vtkNew<vtkTransform2D> toPlot;
        toPlot->SetMatrix(toScene.GetMatrix());
        toPlot->Inverse();
        toPlot->TransformPoints(m_corners.front().GetData(), corners.front().GetData(), count);
    } else {
        toScene.InverseTransformPoints(
            m_corners.front().GetData(), corners.front().GetData(), count);
    }
    return {m_isPolygon, std::move(corners)};
}

SelectionArea::Count SelectionArea::count(
    const DrawnPointsInterface::Coordinates& points, const std::uint8_t* marks) const
{
    if (m_isPolygon) {
        const PolygonMask mask(m_corners);
        return countPoints(
            points, marks, [&mask](float x, float y) { return mask.contains(x, y); });
    }
    return countPoints(points, marks, within());
}

SelectionArea::Within SelectionArea::within() const
{
    const auto [left, right] = std::minmax(m_corners[0].GetX(), m_corners[1].GetX());
    const auto [bottom, top] = std::minmax(m_corners[0].GetY(), m_corners[1].GetY());
    return {{left, bottom}, {right, top}};
}
