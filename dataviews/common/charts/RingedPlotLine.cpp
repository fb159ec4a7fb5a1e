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

bool RingedPlotLine::paintLineInSight(vtkContext2D& painter)
{
    const vtkMatrix3x3& matrix = *painter.GetTransform()->GetMatrix();
    const double pixelsPerUnit = matrix.GetElement(0, 0);
    const bool isLong = Points->GetNumberOfPoints() >= reductionThreshold;
    if (!isLong || !PolyLine || pixelsPerUnit == 0.0 || GetScene() == nullptr || !ascends()) {
        return false;
    }
    if (paintEnvelope(painter)) {
        return true;
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

bool RingedPlotLine::paintEnvelope(vtkContext2D& painter)
{
    // Without a graphics card, strokes of which most hide one another take longer than everything else in the chart.
    auto* const device = vtkOpenGLContextDevice2D::SafeDownCast(painter.GetDevice());
    if (device == nullptr || (ScalarVisibility != 0 && Colors != nullptr)
        || Pen->GetLineType() != vtkPen::SOLID_LINE) {
        return false;
    }
    vtkOpenGLState& state = *device->GetRenderWindow()->GetState();
    std::array<int, 4> viewport = {};
    state.vtkglGetIntegerv(GL_VIEWPORT, viewport.data());
    const vtkNew<vtkMatrix4x4> toView;
    vtkMatrix4x4::Multiply4x4(device->GetProjectionMatrix(), device->GetModelMatrix(), toView);
    const auto axis = [&](int row) {
        const double half = viewport[static_cast<std::size_t>(row) + 2] / 2.0;
        return LineEnvelope::Axis{
            toView->GetElement(row, row) * half, (toView->GetElement(row, 3) + 1.0) * half};
    };
    const std::array<LineEnvelope::Axis, 2> axes = {axis(0), axis(1)};

    struct Vertex
    {
        float x;
        float y;
    };

    const auto* const all = static_cast<const Vertex*>(Points->GetVoidPointer(0));
    const auto* const end = all + Points->GetNumberOfPoints();
    const auto unitsAt = [&](double pixel) {
        return static_cast<float>((pixel - axes[0].offset) / axes[0].scale);
    };
    const float left = std::min(unitsAt(0.0), unitsAt(viewport[2]));
    const float right = std::max(unitsAt(0.0), unitsAt(viewport[2]));
    const auto* first = std::lower_bound(
        all, end, left, [](const Vertex& vertex, float x) { return vertex.x < x; });
    const auto* last = std::upper_bound(
        first, end, right, [](float x, const Vertex& vertex) { return x < vertex.x; });
    constexpr int verticesInCrowdedColumn = 4;
    if (last - first < verticesInCrowdedColumn * viewport[2]) {
        return false;
    }
    // The edges into the picture and out of it.
    first -= first == all ? 0 : 1;
    last += last == end ? 0 : 1;
    m_envelope.cover(&first->x, static_cast<std::size_t>(last - first), axes, viewport[2]);
    LineEnvelope::Look look;
    look.lineWidth = Pen->GetWidth();
    std::copy_n(Pen->GetColor(), 3, look.color.begin());
    look.color[3] = Pen->GetOpacity();
    const int bottom = m_envelope.draw(m_picture, viewport[3], look);
    if (m_picture.width() > 0) {
        m_texture.update(*device->GetRenderWindow(), m_picture);
        m_texture.draw(0, bottom);
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
