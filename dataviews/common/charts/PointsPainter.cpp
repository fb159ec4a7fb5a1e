#include <dataviews/common/charts/PointPicture.h>
#include <dataviews/common/charts/PointPictureDeviceInterface.h>
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
#include <array>
#include <atomic>
#include <memory>

namespace {

constexpr float largestMarker = 200.0F; ///< pixels

/// A rectangle of pixels in the window, and how points are mapped there.
struct View
{
    int left = 0;
    int bottom = 0;
    int width = 0;
    int height = 0;
    std::array<int, 2> corner = {}; ///< in the viewport
    std::array<PointRaster::Axis, 2> axes = {};
    std::array<LineEnvelope::Axis, 2> lineAxes = {};
};

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
    const auto axis = [&](int row, int begin) {
        const double half = viewport[static_cast<std::size_t>(row) + 2] / 2.0;
        return LineEnvelope::Axis{
            toView->GetElement(row, row) * half,
            viewport[static_cast<std::size_t>(row)] + (toView->GetElement(row, 3) + 1.0) * half
                - begin};
    };
    view.corner = {view.left - viewport[0], view.bottom - viewport[1]};
    view.lineAxes = {axis(0, view.left), axis(1, view.bottom)};
    const auto rasterAxis = [](const LineEnvelope::Axis& line, int pixels) {
        return PointRaster::axisOf(line.scale, line.offset, pixels);
    };
    view.axes = {
        rasterAxis(view.lineAxes[0], view.width), rasterAxis(view.lineAxes[1], view.height)};
    return view;
}

/// For a content that no picture had before.
std::uint64_t nextNumber()
{
    static std::atomic<std::uint64_t> last{0};
    return ++last;
}

std::array<unsigned char, 4> colorOf(vtkPen& pen)
{
    std::array<unsigned char, 4> color = {};
    const unsigned char* const bytes = pen.GetColor();
    std::copy(bytes, bytes + color.size(), color.begin());
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

PointsInPicture inPicture(const PointsPainter::Look& look)
{
    PointsInPicture result;
    result.points.coordinates = static_cast<const float*>(look.points->GetVoidPointer(0));
    result.points.count = look.points->GetNumberOfPoints();
    if (look.colors != nullptr) {
        result.colors = look.colors->GetPointer(0);
        result.channels = look.colors->GetNumberOfComponents();
    }
    if (look.selection != nullptr) {
        result.marked = look.selection->GetPointer(0);
        result.markedCount = look.selection->GetNumberOfValues();
    }
    result.color = colorOf(*look.pen);
    if (look.ring != nullptr) {
        result.ring = look.ring->colors();
    } else {
        result.markColor = colorOf(*look.selectionPen);
    }
    result.markerSize = look.markerSize;
    result.deepening = look.deepening;
    return result;
}

} // namespace

bool PointsPainter::PlainKey::operator==(const PlainKey& other) const
{
    return width == other.width && height == other.height && margin == other.margin
        && axes == other.axes && points == other.points && pointsTime == other.pointsTime
        && colors == other.colors && colorsTime == other.colorsTime && color == other.color
        && markerSize == other.markerSize && deepening == other.deepening && line == other.line;
}

bool PointsPainter::MarkKey::operator==(const MarkKey& other) const
{
    return ring == other.ring && pen == other.pen;
}

PointsPainter::PointsPainter() = default;

PointsPainter::~PointsPainter() = default;

bool PointsPainter::canPaint(
    vtkContext2D& painter, float markerSize, vtkIdType count, vtkIdType threshold)
{
    if (markerSize < 1.0F || markerSize > largestMarker) {
        return false;
    }
    const auto* pictures = dynamic_cast<PointPictureDeviceInterface*>(painter.GetDevice());
    if (pictures != nullptr) {
        return pictures->takesPicture(count);
    }
    return count >= threshold
        && vtkOpenGLContextDevice2D::SafeDownCast(painter.GetDevice()) != nullptr;
}

bool PointsPainter::paint(vtkContext2D& painter, const Look& look)
{
    if (auto* pictures = dynamic_cast<PointPictureDeviceInterface*>(painter.GetDevice())) {
        // What is kept is for the screen.
        const PointPictureDeviceInterface::Place place = pictures->picturePlace();
        PointsInPicture points = inPicture(look);
        points.points.axes = place.axes;
        points.scale = place.scale;
        if (place.width > 0 && place.height > 0) {
            pictures->drawPicture(
                std::make_shared<const PointPicture>(points, place.width, place.height));
        }
        return false;
    }
    const View view = viewOf(*vtkOpenGLContextDevice2D::SafeDownCast(painter.GetDevice()));
    if (view.width <= 0 || view.height <= 0) {
        return false;
    }
    PointsInPicture points = inPicture(look);
    points.points.axes = view.axes;
    PlainKey key;
    key.width = view.width;
    key.height = view.height;
    key.margin = points.margin();
    key.axes = view.axes;
    key.points = look.points;
    key.pointsTime = look.points->GetMTime();
    key.colors = look.colors;
    key.colorsTime = look.colors != nullptr ? look.colors->GetMTime() : 0;
    key.color = points.color;
    key.markerSize = look.markerSize;
    key.deepening = look.deepening;
    key.line = look.line;

    MarkKey markKey;
    markKey.ring = points.ring;
    markKey.pen = points.markColor;

    const bool isPlainNew = paintPlain(key, points, view.lineAxes);
    const bool isNew = paintMarks(markKey, points, isPlainNew) || isPlainNew;
    if (isNew) {
        m_number = nextNumber();
    }
    m_corner = view.corner;
    return true;
}

void PointsPainter::draw(vtkContext2D& painter, const std::vector<const PointsPainter*>& below)
{
    std::vector<PictureStack::Layer> layers;
    for (const PointsPainter* other : below) {
        layers.push_back(other->layer());
    }
    layers.push_back(layer());
    auto& device = *vtkOpenGLContextDevice2D::SafeDownCast(painter.GetDevice());
    m_stack.draw(*device.GetRenderWindow(), layers, m_corner[0], m_corner[1]);
}

PictureStack::Layer PointsPainter::layer() const
{
    return {m_markKey ? &m_marked : &m_plain, m_number};
}

bool PointsPainter::paintPlain(
    const PlainKey& key,
    const PointsInPicture& points,
    const std::array<LineEnvelope::Axis, 2>& lineAxes)
{
    if (m_plainKey == key) {
        return false;
    }
    m_plainKey = key;
    m_plain.reset(key.width, key.height, key.margin);
    if (key.line) {
        const LineEnvelope::Vertices vertices{
            points.points.coordinates, static_cast<std::size_t>(points.points.count)};
        // With the margin, from where wide lines reach into the picture.
        const std::array<LineEnvelope::Axis, 2> axes = {
            lineAxes[0].from(-key.margin), lineAxes[1].from(-key.margin)};
        m_envelope.cover(
            LineEnvelope::inSight(vertices, axes[0], m_plain.stride()), axes, m_plain.stride());
        m_envelope.drawInto(m_plain, *key.line);
    }
    points.paintPlain(m_raster, m_plain);
    return true;
}

bool PointsPainter::paintMarks(const MarkKey& key, const PointsInPicture& points, bool isPlainNew)
{
    const vtkIdType count = points.markedCount;
    if (count == 0) {
        const bool wasMarked = m_markKey.has_value();
        m_markKey.reset();
        return wasMarked;
    }
    // The values and not the time of their change, for plots write into the array without telling.
    const vtkIdType* const rows = points.marked;
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
    PointsInPicture marked = points;
    if (m_marksAreInOrder && count == points.points.count) {
        marked.marked = nullptr;
    }
    marked.paintMarks(m_raster, m_marked);
    return true;
}
