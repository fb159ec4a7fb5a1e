#include <dataviews/common/charts/PointsPainter.h>

#include <vtkContext2D.h>
#include <vtkIdTypeArray.h>
#include <vtkMatrix4x4.h>
#include <vtkOpenGLContextDevice2D.h>
#include <vtkOpenGLRenderWindow.h>
#include <vtkOpenGLState.h>
#include <vtkPen.h>
#include <vtkPoints2D.h>
#include <vtkUnsignedCharArray.h>
#include <vtk_glew.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr float largestMarker = 200.0F; ///< pixels

/// What VTK's marks are larger than the points, in pixels.
constexpr float markMargin = 2.7F;

/// A rectangle of pixels in the window, and how points are mapped there.
struct View
{
    int left = 0;
    int bottom = 0;
    int width = 0;
    int height = 0;
    std::array<PointRaster::Axis, 2> axes = {};
};

PointRaster::Axis axisOf(double scale, double offset, int pixels)
{
    const auto center = static_cast<float>((pixels / 2.0 - offset) / scale);
    return {
        center,
        static_cast<float>(scale),
        static_cast<float>(static_cast<double>(center) * scale + offset)};
}

View viewOf(vtkOpenGLContextDevice2D& device)
{
    vtkOpenGLState& state = *device.GetRenderWindow()->GetState();
    std::array<int, 4> viewport = {};
    state.vtkglGetIntegerv(GL_VIEWPORT, viewport.data());
    std::array<int, 4> clip = viewport;
    if (state.GetEnumState(GL_SCISSOR_TEST)) {
        state.vtkglGetIntegerv(GL_SCISSOR_BOX, clip.data());
    }
    View view;
    view.left = std::max(clip[0], viewport[0]);
    view.bottom = std::max(clip[1], viewport[1]);
    view.width = std::min(clip[0] + clip[2], viewport[0] + viewport[2]) - view.left;
    view.height = std::min(clip[1] + clip[3], viewport[1] + viewport[3]) - view.bottom;

    vtkNew<vtkMatrix4x4> toView;
    vtkMatrix4x4::Multiply4x4(device.GetProjectionMatrix(), device.GetModelMatrix(), toView);
    const auto axis = [&](int row, int begin, int pixels) {
        const double half = viewport[static_cast<std::size_t>(row) + 2] / 2.0;
        return axisOf(
            toView->GetElement(row, row) * half,
            viewport[static_cast<std::size_t>(row)] + (toView->GetElement(row, 3) + 1.0) * half
                - begin,
            pixels);
    };
    view.axes = {axis(0, view.left, view.width), axis(1, view.bottom, view.height)};
    return view;
}

template <std::size_t count>
std::array<unsigned char, count> colorOf(vtkPen& pen)
{
    std::array<unsigned char, count> color = {};
    const unsigned char* const bytes = pen.GetColor();
    std::copy(bytes, bytes + count, color.begin());
    return color;
}

/// Whether \p rows are the numbers from 0 on.
bool areInOrder(const std::vector<vtkIdType>& rows)
{
    vtkIdType difference = 0;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        difference |= rows[i] ^ static_cast<vtkIdType>(i);
    }
    return difference == 0;
}

OverlapColors overlapColors(vtkPen& pen, OverlapColors::Deepening deepening)
{
    return {colorOf<3>(pen), pen.GetOpacity(), deepening};
}

} // namespace

bool PointsPainter::PlainKey::operator==(const PlainKey& other) const
{
    return width == other.width && height == other.height && margin == other.margin
        && axes == other.axes && points == other.points && pointsTime == other.pointsTime
        && colors == other.colors && colorsTime == other.colorsTime && color == other.color
        && markerSize == other.markerSize && deepening == other.deepening;
}

bool PointsPainter::MarkKey::operator==(const MarkKey& other) const
{
    return hasRing == other.hasRing && ring == other.ring && pen == other.pen;
}

PointsPainter::PointsPainter() = default;

PointsPainter::~PointsPainter() = default;

bool PointsPainter::canPaint(vtkContext2D& painter, float markerSize)
{
    return vtkOpenGLContextDevice2D::SafeDownCast(painter.GetDevice()) != nullptr
        && markerSize >= 1.0F && markerSize <= largestMarker;
}

void PointsPainter::paint(vtkContext2D& painter, const Look& look)
{
    auto& device = *vtkOpenGLContextDevice2D::SafeDownCast(painter.GetDevice());
    vtkOpenGLRenderWindow& window = *device.GetRenderWindow();
    const View view = viewOf(device);
    if (view.width <= 0 || view.height <= 0) {
        return;
    }
    const float markSize = look.ring != nullptr
        ? static_cast<float>(SelectionRing::size(look.markerSize))
        : look.markerSize + markMargin;
    PlainKey key;
    key.width = view.width;
    key.height = view.height;
    key.margin =
        PointRaster::marginFor(static_cast<int>(std::ceil(std::max(look.markerSize, markSize))));
    key.axes = view.axes;
    key.points = look.points;
    key.pointsTime = look.points->GetMTime();
    key.colors = look.colors;
    key.colorsTime = look.colors != nullptr ? look.colors->GetMTime() : 0;
    key.color = colorOf<4>(*look.pen);
    key.markerSize = look.markerSize;
    key.deepening = look.deepening;

    MarkKey markKey;
    markKey.hasRing = look.ring != nullptr;
    if (look.ring != nullptr) {
        markKey.ring = look.ring->colors();
    } else {
        markKey.pen = colorOf<4>(*look.selectionPen);
    }

    const bool isPlainNew = paintPlain(key, look);
    const bool isNew = paintMarks(markKey, look, isPlainNew) || isPlainNew;
    if (isNew || !m_texture.isIn(window)) {
        m_texture.update(window, m_markKey ? m_marked : m_plain);
    }
    std::array<int, 4> viewport = {};
    window.GetState()->vtkglGetIntegerv(GL_VIEWPORT, viewport.data());
    m_texture.draw(view.left - viewport[0], view.bottom - viewport[1]);
}

PointRaster::Points PointsPainter::pointsOf(const Look& look) const
{
    PointRaster::Points points;
    points.coordinates = static_cast<const float*>(look.points->GetVoidPointer(0));
    points.count = look.points->GetNumberOfPoints();
    points.axes = m_plainKey->axes;
    return points;
}

bool PointsPainter::paintPlain(const PlainKey& key, const Look& look)
{
    if (m_plainKey == key) {
        return false;
    }
    m_plainKey = key;
    m_plain.reset(key.width, key.height, key.margin);
    const MarkerStencil stencil = MarkerStencil::circle(look.markerSize);
    if (look.colors != nullptr) {
        m_raster.paintColoredDiscs(
            m_plain,
            pointsOf(look),
            stencil,
            look.colors->GetPointer(0),
            look.colors->GetNumberOfComponents());
    } else {
        m_raster.paintDiscs(
            m_plain, pointsOf(look), stencil, overlapColors(*look.pen, look.deepening));
    }
    return true;
}

bool PointsPainter::paintMarks(const MarkKey& key, const Look& look, bool isPlainNew)
{
    const vtkIdType count =
        look.selection != nullptr ? look.selection->GetNumberOfValues() : vtkIdType(0);
    if (count == 0) {
        const bool wasMarked = m_markKey.has_value();
        m_markKey.reset();
        return wasMarked;
    }
    // The values and not the time of their change, for plots write into the array without telling.
    const vtkIdType* const rows = look.selection->GetPointer(0);
    const bool isSame = m_marks.size() == static_cast<std::size_t>(count)
        && std::equal(m_marks.begin(), m_marks.end(), rows);
    if (isSame && !isPlainNew && m_markKey == key) {
        return false;
    }
    if (!isSame) {
        m_marks.assign(rows, rows + count);
        m_marksAreInOrder = areInOrder(m_marks);
    }
    m_markKey = key;
    m_marked = m_plain;
    PointRaster::Points points = pointsOf(look);
    if (!m_marksAreInOrder || count != points.count) {
        points.rows = m_marks.data();
        points.rowCount = count;
    }
    if (look.ring == nullptr) {
        m_raster.paintDiscs(
            m_marked,
            points,
            MarkerStencil::circle(look.markerSize + markMargin),
            overlapColors(*look.selectionPen, look.deepening));
        return true;
    }
    m_raster.paintRings(m_marked, points, look.ring->raster(look.markerSize));
    if (look.ring->coversPoints()) {
        return true;
    }
    // The selected points lie over the rings of others.
    const MarkerStencil stencil = MarkerStencil::circle(look.markerSize);
    if (look.colors != nullptr) {
        m_raster.paintColoredDiscs(
            m_marked,
            points,
            stencil,
            look.colors->GetPointer(0),
            look.colors->GetNumberOfComponents());
    } else {
        m_raster.paintDiscs(m_marked, points, stencil, overlapColors(*look.pen, look.deepening));
    }
    // In a crowd the discs of one another cover all rings.
    m_raster.paintDiscs(m_marked, points, stencil, OverlapColors::veil(look.ring->colors().ring));
    return true;
}
