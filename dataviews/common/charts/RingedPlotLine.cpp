#include <dataviews/common/charts/RingedPlotLine.h>
#include <dataviews/common/charts/lineInSight.h>

#include <vtkContext2D.h>
#include <vtkContextScene.h>
#include <vtkMatrix3x3.h>
#include <vtkMatrix4x4.h>
#include <vtkNew.h>
#include <vtkObjectFactory.h>
#include <vtkOpenGLContextDevice2D.h>
#include <vtkOpenGLRenderWindow.h>
#include <vtkOpenGLState.h>
#include <vtkPen.h>
#include <vtkPoints2D.h>
#include <vtkTransform2D.h>
#include <vtkUnsignedCharArray.h>
#include <vtk_glew.h>

#include <algorithm>
#include <array>
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

bool RingedPlotLine::canReduce(vtkContext2D& painter)
{
    const bool isLong = Points->GetNumberOfPoints() >= reductionThreshold;
    return isLong && PolyLine && painter.GetTransform()->GetMatrix()->GetElement(0, 0) != 0.0
        && GetScene() != nullptr && ascends();
}

bool RingedPlotLine::paintLineInSight(vtkContext2D& painter)
{
    if (!canReduce(painter)) {
        return false;
    }
    if (const std::optional<Crowd> many = crowd(painter)) {
        paintEnvelope(painter, *many);
        return true;
    }
    const vtkMatrix3x3& matrix = *painter.GetTransform()->GetMatrix();
    const double pixelsPerUnit = matrix.GetElement(0, 0);
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

std::optional<RingedPlotLine::Crowd> RingedPlotLine::crowd(vtkContext2D& painter)
{
    // Without a graphics card, strokes of which most hide one another take longer than everything else in the chart.
    auto* const device = vtkOpenGLContextDevice2D::SafeDownCast(painter.GetDevice());
    if (device == nullptr || (ScalarVisibility != 0 && Colors != nullptr)
        || Pen->GetLineType() != vtkPen::SOLID_LINE) {
        return std::nullopt;
    }
    Crowd crowd;
    device->GetRenderWindow()->GetState()->vtkglGetIntegerv(GL_VIEWPORT, crowd.viewport.data());
    const vtkNew<vtkMatrix4x4> toView;
    vtkMatrix4x4::Multiply4x4(device->GetProjectionMatrix(), device->GetModelMatrix(), toView);
    const auto axis = [&](int row) {
        const double half = crowd.viewport[static_cast<std::size_t>(row) + 2] / 2.0;
        return LineEnvelope::Axis{
            toView->GetElement(row, row) * half, (toView->GetElement(row, 3) + 1.0) * half};
    };
    crowd.axes = {axis(0), axis(1)};
    const int width = crowd.viewport[2];
    crowd.vertices = LineEnvelope::inSight(
        {static_cast<const float*>(Points->GetVoidPointer(0)),
         static_cast<std::size_t>(Points->GetNumberOfPoints())},
        crowd.axes[0],
        width);
    constexpr std::size_t verticesInCrowdedColumn = 4;
    if (crowd.vertices.count < verticesInCrowdedColumn * static_cast<std::size_t>(width)) {
        return std::nullopt;
    }
    return crowd;
}

LineEnvelope::Look RingedPlotLine::lineLook() const
{
    LineEnvelope::Look look;
    look.lineWidth = Pen->GetWidth();
    std::copy_n(Pen->GetColor(), 3, look.color.begin());
    look.color[3] = Pen->GetOpacity();
    return look;
}

void RingedPlotLine::paintEnvelope(vtkContext2D& painter, const Crowd& crowd)
{
    m_envelope.cover(crowd.vertices, crowd.axes, crowd.viewport[2]);
    const int bottom = m_envelope.draw(m_picture, crowd.viewport[3], lineLook());
    if (m_picture.width() > 0) {
        auto& device = *vtkOpenGLContextDevice2D::SafeDownCast(painter.GetDevice());
        m_texture.update(*device.GetRenderWindow(), m_picture);
        m_texture.draw(0, bottom);
    }
}

std::optional<LineEnvelope::Look> RingedPlotLine::lineInRaster(vtkContext2D& painter)
{
    return canReduce(painter) && crowd(painter) ? std::optional(lineLook()) : std::nullopt;
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
