#include <dataviews/common/charts/RingedPlotLine.h>
#include <dataviews/common/charts/lineInSight.h>

#include <vtkContext2D.h>
#include <vtkContextScene.h>
#include <vtkMatrix3x3.h>
#include <vtkObjectFactory.h>
#include <vtkPen.h>
#include <vtkPoints2D.h>
#include <vtkTransform2D.h>
#include <vtkUnsignedCharArray.h>

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

vtkStandardNewMacro(RingedPlotLine)

    RingedPlotLine::RingedPlotLine() = default;

RingedPlotLine::~RingedPlotLine() = default;

bool RingedPlotLine::paintUnmarked(vtkContext2D* painter)
{
    if (Visible && Points != nullptr && Points->GetNumberOfPoints() > 1) {
        paintLine(*painter);
    }
    return vtkPlotPoints::Paint(painter);
}

void RingedPlotLine::paintLine(vtkContext2D& painter)
{
    if (paintLineInSight(painter)) {
        return;
    }
    vtkIdTypeArray* const selection = std::exchange(Selection, nullptr);
    const int style = std::exchange(MarkerStyle, static_cast<int>(NONE));
    vtkPlotLine::Paint(&painter);
    MarkerStyle = style;
    Selection = selection;
}

bool RingedPlotLine::paintLineInSight(vtkContext2D& painter)
{
    const vtkMatrix3x3& matrix = *painter.GetTransform()->GetMatrix();
    const double pixelsPerUnit = matrix.GetElement(0, 0);
    const bool isLong = Points->GetNumberOfPoints() >= reductionThreshold;
    if (!isLong || !PolyLine || pixelsPerUnit == 0.0 || GetScene() == nullptr || !ascends()) {
        return false;
    }
    const auto unitsAt = [&](double pixel) {
        return static_cast<float>((pixel - matrix.GetElement(0, 2)) / pixelsPerUnit);
    };
    // Finer than the pixels of the screen: pictures may have more of them.
    constexpr double columnPixels = 0.5;
    const float begin = unitsAt(0.0);
    const float end = unitsAt(GetScene()->GetSceneWidth());
    const LineSight sight{
        std::min(begin, end),
        std::max(begin, end),
        static_cast<float>(columnPixels / std::abs(pixelsPerUnit))};
    if (!(sight.columnWidth > 0.0F)) {
        return false;
    }
    const auto* const all = static_cast<const float*>(Points->GetVoidPointer(0));
    const std::vector<std::size_t> vertices =
        lineInSight(all, static_cast<std::size_t>(Points->GetNumberOfPoints()), sight);

    std::vector<float> points;
    points.reserve(2 * vertices.size());
    for (const std::size_t vertex : vertices) {
        points.push_back(all[2 * vertex]);
        points.push_back(all[2 * vertex + 1]);
    }
    std::vector<unsigned char> colors;
    int channels = 0;
    if (ScalarVisibility != 0 && Colors != nullptr) {
        channels = Colors->GetNumberOfComponents();
        for (const std::size_t vertex : vertices) {
            const unsigned char* color =
                Colors->GetPointer(static_cast<vtkIdType>(vertex) * channels);
            colors.insert(colors.end(), color, color + channels);
        }
    }
    painter.ApplyPen(Pen);
    const int count = static_cast<int>(vertices.size());
    if (count < 2) {
        return true;
    }
    if (colors.empty()) {
        painter.DrawPoly(points.data(), count);
    } else {
        painter.DrawPoly(points.data(), count, colors.data(), channels);
    }
    return true;
}

bool RingedPlotLine::ascends()
{
    const vtkMTimeType time = Points->GetMTime();
    if (m_checkedTime != time) {
        m_checkedTime = time;
        const auto* const points = static_cast<const float*>(Points->GetVoidPointer(0));
        m_ascends = true;
        for (vtkIdType i = 0; i < Points->GetNumberOfPoints() && m_ascends; ++i) {
            // Not a number is neither.
            m_ascends = std::isfinite(points[2 * i]) && std::isfinite(points[2 * i + 1])
                && (i == 0 || points[2 * (i - 1)] <= points[2 * i]);
        }
    }
    return m_ascends;
}

void RingedPlotLine::paintBehindRaster(vtkContext2D* painter)
{
    paintLine(*painter);
}
