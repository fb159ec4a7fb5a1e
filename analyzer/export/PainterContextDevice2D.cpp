#include <analyzer/export/PainterContextDevice2D.h>
#include <analyzer/views/Scatter3DPicture.h>

#include <dataviews/common/charts/PointPicture.h>

#include <QFontMetricsF>
#include <QPainterPath>
#include <QString>
#include <QStringList>

#include <vtkBrush.h>
#include <vtkContext2D.h>
#include <vtkImageData.h>
#include <vtkMatrix3x3.h>
#include <vtkObjectFactory.h>
#include <vtkPen.h>
#include <vtkPlotPoints.h>
#include <vtkTextRenderer.h>
#include <vtkUnicodeString.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <utility>

namespace analyzer {

namespace {

constexpr int opaque = 255;
constexpr double pointsPerInch = 72.0;

/// The coordinates of the point at \p index.
const float* pointAt(const float* points, int index)
{
    return points + 2 * static_cast<std::ptrdiff_t>(index);
}

bool isFinite(const QPointF& point)
{
    return std::isfinite(point.x()) && std::isfinite(point.y());
}

QColor toColor(const unsigned char* color)
{
    return {color[0], color[1], color[2], color[3]};
}

/// Whether the paint engine can make such lines sharp by leaving out soft edges.
bool isAlongAxes(const QPolygonF& line)
{
    constexpr double tolerance = 1e-3;
    for (int i = 1; i < line.size(); ++i) {
        if (std::abs(line[i].x() - line[i - 1].x()) > tolerance
            && std::abs(line[i].y() - line[i - 1].y()) > tolerance) {
            return false;
        }
    }
    return true;
}

/// The part of the line from \p a to \p b in \p box; false if there is none.
bool clipSegment(QPointF& a, QPointF& b, const QRectF& box)
{
    const QPointF delta = b - a;
    double begin = 0.0;
    double end = 1.0;
    const std::array<std::pair<double, double>, 4> edges{
        {{-delta.x(), a.x() - box.left()},
         {delta.x(), box.right() - a.x()},
         {-delta.y(), a.y() - box.top()},
         {delta.y(), box.bottom() - a.y()}}};
    for (const auto& [along, room] : edges) {
        if (along == 0.0) {
            if (room < 0.0) {
                return false;
            }
        } else if (along < 0.0) {
            begin = std::max(begin, room / along);
        } else {
            end = std::min(end, room / along);
        }
    }
    if (begin > end) {
        return false;
    }
    b = a + delta * end;
    a += delta * begin;
    return true;
}

/// The pixels of \p data, whose first row is the lowest.
QImage toImage(vtkImageData& data)
{
    const int* size = data.GetDimensions();
    const int channels = data.GetNumberOfScalarComponents();
    constexpr int rgb = 3;
    constexpr int rgba = 4;
    if (data.GetScalarType() != VTK_UNSIGNED_CHAR || (channels != rgb && channels != rgba)) {
        return {};
    }
    QImage image(size[0], size[1], QImage::Format_ARGB32);
    for (int y = 0; y < size[1]; ++y) {
        const auto* bytes =
            static_cast<const unsigned char*>(data.GetScalarPointer(0, size[1] - 1 - y, 0));
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < size[0]; ++x, bytes += channels) {
            line[x] = qRgba(bytes[0], bytes[1], bytes[2], channels == rgba ? bytes[3] : opaque);
        }
    }
    return image;
}

QFont fontOf(vtkTextProperty& property, int dpi)
{
    // The fonts that VTK brings along have these names elsewhere.
    QFont font;
    switch (property.GetFontFamily()) {
    case VTK_COURIER:
        font.setFamily(QStringLiteral("Courier New"));
        font.setStyleHint(QFont::Monospace);
        break;
    case VTK_TIMES:
        font.setFamily(QStringLiteral("Times New Roman"));
        font.setStyleHint(QFont::Serif);
        break;
    default:
        font.setFamily(QStringLiteral("Arial"));
        font.setStyleHint(QFont::SansSerif);
        break;
    }
    font.setBold(property.GetBold() != 0);
    font.setItalic(property.GetItalic() != 0);
    font.setPixelSize(
        std::max(1, static_cast<int>(std::lround(property.GetFontSize() * dpi / pointsPerInch))));
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

QColor colorOf(vtkTextProperty& property)
{
    const double* color = property.GetColor();
    QColor result;
    result.setRgbF(color[0], color[1], color[2], property.GetOpacity());
    return result;
}

/// \p value of 255 parts of \p share.
std::uint32_t scaled(std::uint32_t value, std::uint32_t share)
{
    constexpr std::uint32_t half = 128;
    const std::uint32_t product = value * share + half;
    return (product + (product >> 8U)) >> 8U;
}

constexpr int maskPhases = 4; ///< places of a marker within a pixel, along and across

int maskSide(double size)
{
    return static_cast<int>(std::ceil(size)) + 2;
}

/// Puts \p color over \p image, which is premultiplied, where \p mask at \p corner covers it.
void blend(QImage& image, const QImage& mask, const QPoint& corner, QRgb color)
{
    constexpr std::uint32_t byte = 0xFF;
    const int top = std::max(0, -corner.y());
    const int bottom = std::min(mask.height(), image.height() - corner.y());
    const int left = std::max(0, -corner.x());
    const int right = std::min(mask.width(), image.width() - corner.x());
    for (int y = top; y < bottom; ++y) {
        const unsigned char* cover = mask.constScanLine(y);
        auto* line = reinterpret_cast<std::uint32_t*>(image.scanLine(corner.y() + y)) + corner.x();
        for (int x = left; x < right; ++x) {
            const std::uint32_t share = scaled(cover[x], color >> 24U);
            if (share == 0) {
                continue;
            }
            const std::uint32_t before = line[x];
            const std::uint32_t rest = byte - share;
            const auto mixed = [=](unsigned shift) {
                return scaled((color >> shift) & byte, share)
                    + scaled((before >> shift) & byte, rest);
            };
            const std::uint32_t alpha = share + scaled(before >> 24U, rest);
            line[x] = (alpha << 24U) | (mixed(16U) << 16U) | (mixed(8U) << 8U) | mixed(0U);
        }
    }
}

} // namespace

vtkStandardNewMacro(PainterContextDevice2D)

    PainterContextDevice2D::PainterContextDevice2D() = default;

PainterContextDevice2D::~PainterContextDevice2D() = default;

void PainterContextDevice2D::startPainting(QPainter& painter, const Target& target)
{
    m_painter = &painter;
    m_target = target;
    m_matrix = QTransform();
    m_matrices.clear();
    m_isClipping = false;
    m_pointCount = 0;
    Geometry[0] = target.size.width();
    Geometry[1] = target.size.height();
    SetViewportSize(vtkVector2i(target.size.width(), target.size.height()));
    SetViewportRect(vtkRecti(0, 0, target.size.width(), target.size.height()));
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::TextAntialiasing);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
}

void PainterContextDevice2D::finishPainting()
{
    flushLayer();
    m_painter = nullptr;
}

QPainter& PainterContextDevice2D::painter()
{
    flushLayer();
    return *m_painter;
}

// ---- lines and areas

void PainterContextDevice2D::DrawPoly(float* points, int n, unsigned char* colors, int channels)
{
    if (n < 2 || Pen->GetLineType() == vtkPen::NO_PEN) {
        return;
    }
    QPainter& painter = pointPainter(static_cast<std::size_t>(n));
    const QPolygonF line = mapped(points, n);
    if (colors == nullptr) {
        painter.setPen(linePen(toColor(Pen->GetColor())));
        drawLine(painter, line);
        return;
    }
    for (int i = 1; i < n; ++i) {
        painter.setPen(linePen(colorOf(colors, channels, i)));
        drawLine(painter, QPolygonF(QVector<QPointF>{line[i - 1], line[i]}));
    }
}

void PainterContextDevice2D::DrawLines(float* points, int n, unsigned char* colors, int channels)
{
    if (Pen->GetLineType() == vtkPen::NO_PEN) {
        return;
    }
    QPainter& painter = pointPainter(static_cast<std::size_t>(n));
    painter.setPen(linePen(toColor(Pen->GetColor())));
    for (int i = 0; i + 1 < n; i += 2) {
        if (colors != nullptr) {
            painter.setPen(linePen(colorOf(colors, channels, i)));
        }
        drawLine(painter, mapped(pointAt(points, i), 2));
    }
}

void PainterContextDevice2D::drawLine(QPainter& painter, const QPolygonF& line)
{
    // Soft edges would spread a line of one pixel over two.
    painter.setRenderHint(QPainter::Antialiasing, m_target.isVector || !isAlongAxes(line));
    const QRectF box = clip();
    QPolygonF run;
    const auto drawRun = [&] {
        if (run.size() > 1) {
            painter.drawPolyline(run);
        }
        run.clear();
    };
    for (int i = 1; i < line.size(); ++i) {
        QPointF from = line[i - 1];
        QPointF to = line[i];
        if (!isFinite(from) || !isFinite(to) || !clipSegment(from, to, box)) {
            drawRun();
            continue;
        }
        if (run.isEmpty() || run.last() != from) {
            drawRun();
            run.append(from);
        }
        run.append(to);
    }
    drawRun();
    painter.setRenderHint(QPainter::Antialiasing);
}

void PainterContextDevice2D::fill(QPolygonF shape, const QColor& color)
{
    if (color.alpha() == 0 || !std::all_of(shape.begin(), shape.end(), isFinite)) {
        return;
    }
    const QRectF box = clip();
    if (!box.contains(shape.boundingRect())) {
        shape = shape.intersected(QPolygonF(box));
    }
    QPainter& target = painter();
    target.setPen(Qt::NoPen);
    target.setBrush(color);
    QPolygonF closed = shape;
    if (!closed.isEmpty()) {
        closed.append(closed.first());
    }
    target.setRenderHint(QPainter::Antialiasing, m_target.isVector || !isAlongAxes(closed));
    target.drawPolygon(shape);
    target.setRenderHint(QPainter::Antialiasing);
}

void PainterContextDevice2D::DrawQuad(float* points, int n)
{
    fill(mapped(points, n), toColor(Brush->GetColor()));
}

void PainterContextDevice2D::DrawQuadStrip(float* points, int n)
{
    constexpr int corners = 4;
    for (int i = 0; i + corners <= n; i += 2) {
        const QPolygonF quad = mapped(pointAt(points, i), corners);
        fill(
            QPolygonF(QVector<QPointF>{quad[0], quad[1], quad[3], quad[2]}),
            toColor(Brush->GetColor()));
    }
}

void PainterContextDevice2D::DrawColoredPolygon(
    float* points, int n, unsigned char* colors, int channels)
{
    fill(
        mapped(points, n),
        colors == nullptr ? toColor(Brush->GetColor()) : colorOf(colors, channels, 0));
}

void PainterContextDevice2D::DrawEllipseWedge(
    float x,
    float y,
    float outRx,
    float outRy,
    float inRx,
    float inRy,
    float startAngle,
    float stopAngle)
{
    const auto box = [&](float radiusX, float radiusY) {
        const std::array<float, 4> corners{x - radiusX, y - radiusY, x + radiusX, y + radiusY};
        return QRectF(mapped(corners.data()), mapped(corners.data() + 2)).normalized();
    };
    constexpr float whole = 360.0F;
    QPainterPath path;
    if (stopAngle - startAngle >= whole) {
        path.addEllipse(box(outRx, outRy));
    } else {
        path.arcMoveTo(box(outRx, outRy), startAngle);
        path.arcTo(box(outRx, outRy), startAngle, stopAngle - startAngle);
        if (inRx <= 0.0F || inRy <= 0.0F) {
            path.lineTo(box(outRx, outRy).center());
        } else {
            path.arcTo(box(inRx, inRy), stopAngle, startAngle - stopAngle);
        }
        path.closeSubpath();
    }
    if (inRx > 0.0F && inRy > 0.0F && stopAngle - startAngle >= whole) {
        path.addEllipse(box(inRx, inRy)); // a hole, by the rule of odd and even
    }
    QPainter& target = painter();
    target.setPen(Qt::NoPen);
    target.setBrush(toColor(Brush->GetColor()));
    target.drawPath(path);
}

void PainterContextDevice2D::DrawEllipticArc(
    float x, float y, float rX, float rY, float startAngle, float stopAngle)
{
    const std::array<float, 4> corners{x - rX, y - rY, x + rX, y + rY};
    const QRectF box = QRectF(mapped(corners.data()), mapped(corners.data() + 2)).normalized();
    QPainterPath path;
    path.arcMoveTo(box, startAngle);
    path.arcTo(box, startAngle, stopAngle - startAngle);
    // VTK's own devices fill an arc, too; charts draw round markers so.
    QPainter& target = painter();
    target.setPen(
        Pen->GetLineType() == vtkPen::NO_PEN ? QPen(Qt::NoPen) : linePen(toColor(Pen->GetColor())));
    target.setBrush(toColor(Brush->GetColor()));
    target.drawPath(path);
}

// ---- points

void PainterContextDevice2D::DrawPoints(float* points, int n, unsigned char* colors, int channels)
{
    DrawMarkers(VTK_MARKER_SQUARE, false, points, n, colors, channels);
}

void PainterContextDevice2D::DrawMarkers(
    int shape, bool /*highlight*/, float* points, int n, unsigned char* colors, int channels)
{
    if (n <= 0) {
        return;
    }
    QPainter& target = pointPainter(static_cast<std::size_t>(n));
    if (isInLayer()) {
        drawManyMarkers(shape, points, n, colors, channels);
        return;
    }
    const double size = Pen->GetWidth();
    const QRectF box = clip();
    for (int i = 0; i < n; ++i) {
        const QPointF middle = mapped(pointAt(points, i));
        const QRectF around(middle.x() - size / 2.0, middle.y() - size / 2.0, size, size);
        if (!isFinite(middle) || !box.intersects(around)) {
            continue;
        }
        if (i == 0 || colors != nullptr) {
            target.setBrush(colorOf(colors, channels, i));
        }
        target.setPen(Qt::NoPen);
        if (box.contains(around)) {
            drawMarker(target, shape, middle, size);
            continue;
        }
        QPainterPath inside;
        inside.addRect(box);
        QPainterPath marker;
        marker.addEllipse(around);
        target.drawPath(marker.intersected(inside));
    }
}

void PainterContextDevice2D::drawMarker(
    QPainter& painter, int shape, const QPointF& middle, double size)
{
    const double radius = size / 2.0;
    switch (shape) {
    case VTK_MARKER_CROSS:
    case VTK_MARKER_PLUS: {
        painter.setPen(QPen(painter.brush(), std::max(1.0, size / 5.0)));
        const QPointF right =
            shape == VTK_MARKER_PLUS ? QPointF(radius, 0.0) : QPointF(radius, radius) * 0.8;
        const QPointF up(-right.y(), right.x());
        const bool isPlus = shape == VTK_MARKER_PLUS;
        painter.drawLine(middle - right, middle + right);
        painter.drawLine(
            middle - (isPlus ? QPointF(0.0, radius) : up),
            middle + (isPlus ? QPointF(0.0, radius) : up));
        break;
    }
    case VTK_MARKER_SQUARE:
        painter.drawRect(QRectF(middle.x() - radius, middle.y() - radius, size, size));
        break;
    case VTK_MARKER_DIAMOND:
        painter.drawPolygon(QPolygonF(QVector<QPointF>{
            middle - QPointF(radius, 0.0),
            middle - QPointF(0.0, radius),
            middle + QPointF(radius, 0.0),
            middle + QPointF(0.0, radius)}));
        break;
    default:
        painter.drawEllipse(middle, radius, radius);
        break;
    }
}

std::vector<QImage> PainterContextDevice2D::masksOf(
    double size, const std::function<void(QPainter&, const QPointF&)>& draw)
{
    const int side = maskSide(size);
    std::vector<QImage> masks;
    for (int phase = 0; phase < maskPhases * maskPhases; ++phase) {
        const div_t phases = std::div(phase, maskPhases);
        QImage mask(side, side, QImage::Format_ARGB32_Premultiplied);
        mask.fill(Qt::transparent);
        QPainter painter(&mask);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(Qt::white);
        const int middle = side / 2;
        draw(
            painter,
            QPointF(
                middle + (phases.rem + 0.5) / maskPhases,
                middle + (phases.quot + 0.5) / maskPhases));
        painter.end();
        masks.push_back(mask.convertToFormat(QImage::Format_Alpha8));
    }
    return masks;
}

void PainterContextDevice2D::drawManyMarkers(
    int shape, const float* points, int n, const unsigned char* colors, int channels)
{
    const double size = Pen->GetWidth() * m_target.scale;
    const bool isDisc = shape != VTK_MARKER_CROSS && shape != VTK_MARKER_PLUS
        && shape != VTK_MARKER_SQUARE && shape != VTK_MARKER_DIAMOND;
    if (isDisc && m_layer->image.width() < std::numeric_limits<std::uint16_t>::max()) {
        drawManyDiscs(points, n, colors, channels);
        return;
    }
    const std::vector<QImage> masks = masksOf(size, [&](QPainter& painter, const QPointF& middle) {
        drawMarker(painter, shape, middle, size);
    });
    stamp(points, n, size, [&](int index, std::size_t phase, const QPoint& corner) {
        blend(m_layer->image, masks[phase], corner, colorOf(colors, channels, index).rgba());
    });
}

void PainterContextDevice2D::drawManyDiscs(
    const float* points, int n, const unsigned char* colors, int channels)
{
    // What is hidden costs next to nothing there.
    constexpr int places = 2;
    constexpr int rgba = 4;
    const auto count = static_cast<std::size_t>(n);
    const QImage& layer = m_layer->image;
    const double diameter = Pen->GetWidth() * m_target.scale;
    std::vector<float> middles(count * places);
    std::vector<std::uint32_t> order;
    order.reserve(count);
    std::vector<unsigned char> bytes(colors == nullptr ? 0 : count * rgba);
    for (int i = 0; i < n; ++i) {
        const QPointF middle =
            (mapped(pointAt(points, i)) - m_layer->place.topLeft()) * m_target.scale;
        // Also false for what is not finite.
        const bool isNear = middle.x() > -diameter && middle.y() > -diameter
            && middle.x() < layer.width() + diameter && middle.y() < layer.height() + diameter;
        if (!isNear) {
            continue;
        }
        const auto row = static_cast<std::size_t>(i);
        order.push_back(static_cast<std::uint32_t>(i));
        middles[row * places] = static_cast<float>(middle.x());
        middles[row * places + 1] = static_cast<float>(layer.height() - middle.y());
        if (colors != nullptr) {
            const unsigned char* color = colors + row * static_cast<std::size_t>(channels);
            unsigned char* bytesOfRow = bytes.data() + row * rgba;
            std::copy(color, color + std::min(channels, rgba), bytesOfRow);
            if (channels < rgba) {
                bytesOfRow[rgba - 1] = opaque;
            }
        }
    }
    const QColor plain = colorOf(nullptr, 0, 0);
    Scatter3DPicture picture;
    picture.draw(
        {middles.data(),
         order,
         colors == nullptr ? nullptr : bytes.data(),
         {static_cast<unsigned char>(plain.red()),
          static_cast<unsigned char>(plain.green()),
          static_cast<unsigned char>(plain.blue()),
          static_cast<unsigned char>(plain.alpha())}},
        static_cast<float>(diameter),
        layer.width(),
        layer.height());
    m_layer->painter->drawImage(m_layer->place, toImage(picture.image()));
}

template <class Blend>
void PainterContextDevice2D::stamp(const float* points, int n, double size, const Blend& blendAt)
{
    // The marker is drawn once for every quarter of a pixel, then copied: a million of them take a moment, not minutes.
    const int side = maskSide(size);
    m_layer->painter->end();
    const QImage& image = m_layer->image;
    for (int i = 0; i < n; ++i) {
        const QPointF middle =
            (mapped(pointAt(points, i)) - m_layer->place.topLeft()) * m_target.scale;
        // Also false for what is not finite.
        const bool isNear = middle.x() > -side && middle.y() > -side
            && middle.x() < image.width() + side && middle.y() < image.height() + side;
        if (!isNear) {
            continue;
        }
        const double wholeX = std::floor(middle.x());
        const double wholeY = std::floor(middle.y());
        const int phaseX =
            std::min(maskPhases - 1, static_cast<int>((middle.x() - wholeX) * maskPhases));
        const int phaseY =
            std::min(maskPhases - 1, static_cast<int>((middle.y() - wholeY) * maskPhases));
        blendAt(
            i,
            static_cast<std::size_t>(phaseY) * maskPhases + static_cast<std::size_t>(phaseX),
            QPoint(static_cast<int>(wholeX) - side / 2, static_cast<int>(wholeY) - side / 2));
    }
    startLayerPainter();
}

void PainterContextDevice2D::startLayerPainter()
{
    m_layer->painter->begin(&m_layer->image);
    m_layer->painter->setRenderHint(QPainter::Antialiasing);
    m_layer->painter->scale(m_target.scale, m_target.scale);
    m_layer->painter->translate(-m_layer->place.topLeft());
}

void PainterContextDevice2D::DrawPointSprites(
    vtkImageData* sprite, float* points, int n, unsigned char* colors, int channels)
{
    if (n <= 0) {
        return;
    }
    const QImage image = sprite == nullptr ? QImage() : toImage(*sprite);
    if (image.isNull()) {
        DrawMarkers(VTK_MARKER_SQUARE, false, points, n, colors, channels);
        return;
    }

    // Sprites of charts are round: rings of the colors from their middle outward are as sharp at every scale.
    struct Ring
    {
        double inner;
        double outer;
        QColor color;
    };

    std::vector<Ring> rings;
    const double pixel = static_cast<double>(Pen->GetWidth()) / image.width();
    const int middle = image.width() / 2;
    for (int distance = 0; middle + distance < image.width(); ++distance) {
        const QColor color = QColor::fromRgba(image.pixel(middle + distance, image.height() / 2));
        const double inner = std::max(0.0, distance - 0.5) * pixel;
        const double outer = (distance + 0.5) * pixel;
        if (!rings.empty() && rings.back().color == color) {
            rings.back().outer = outer;
        } else {
            rings.push_back({inner, outer, color});
        }
    }

    rings.erase(
        std::remove_if(
            rings.begin(), rings.end(), [](const Ring& ring) { return ring.color.alpha() == 0; }),
        rings.end());
    // Filled by the rule of odd and even.
    const auto pathOf = [](const Ring& ring, const QPointF& place, double scale) {
        QPainterPath path;
        path.addEllipse(place, ring.outer * scale, ring.outer * scale);
        if (ring.inner > 0.0) {
            path.addEllipse(place, ring.inner * scale, ring.inner * scale);
        }
        return path;
    };

    QPainter& target = pointPainter(static_cast<std::size_t>(n));
    const double size = Pen->GetWidth();
    if (isInLayer()) {
        const double sizeInLayer = size * m_target.scale;
        std::vector<std::vector<QImage>> masks;
        masks.reserve(rings.size());
        for (const Ring& ring : rings) {
            masks.push_back(masksOf(sizeInLayer, [&](QPainter& painter, const QPointF& at) {
                painter.drawPath(pathOf(ring, at, m_target.scale));
            }));
        }
        stamp(points, n, sizeInLayer, [&](int /*index*/, std::size_t phase, const QPoint& corner) {
            for (std::size_t ring = 0; ring < rings.size(); ++ring) {
                blend(m_layer->image, masks[ring][phase], corner, rings[ring].color.rgba());
            }
        });
        return;
    }
    const QRectF box = clip();
    QPainterPath inside;
    inside.addRect(box);
    target.setPen(Qt::NoPen);
    for (int i = 0; i < n; ++i) {
        const QPointF place = mapped(pointAt(points, i));
        const QRectF around(place.x() - size / 2.0, place.y() - size / 2.0, size, size);
        if (!isFinite(place) || !box.intersects(around)) {
            continue;
        }
        for (const Ring& ring : rings) {
            const QPainterPath path = pathOf(ring, place, 1.0);
            target.setBrush(ring.color);
            target.drawPath(box.contains(around) ? path : path.intersected(inside));
        }
    }
}

QPainter& PainterContextDevice2D::pointPainter(std::size_t count)
{
    // Only what charts draw of cases is clipped: axes and legends stay vectors.
    if (!m_isClipping) {
        return painter();
    }
    m_pointCount += count;
    if (m_pointCount <= maxVectorPoints && m_layer == nullptr) {
        return *m_painter;
    }
    Layer& target = layer();
    if (target.image.isNull()) {
        target.image = QImage(target.size, QImage::Format_ARGB32_Premultiplied);
        target.image.fill(Qt::transparent);
        target.painter = std::make_unique<QPainter>();
        startLayerPainter();
    }
    return *target.painter;
}

QRectF PainterContextDevice2D::layerPlace() const
{
    // From a whole pixel on, so that nothing is blurred.
    QRectF place = clip();
    place.setTopLeft(
        {std::floor(place.left() * m_target.scale) / m_target.scale,
         std::floor(place.top() * m_target.scale) / m_target.scale});
    const QSizeF size = place.size() * m_target.scale;
    const QSize pixels(
        std::max(1, static_cast<int>(std::ceil(size.width()))),
        std::max(1, static_cast<int>(std::ceil(size.height()))));
    place.setSize(QSizeF(pixels) / m_target.scale);
    return place;
}

PainterContextDevice2D::Layer& PainterContextDevice2D::layer()
{
    if (!m_layer) {
        m_layer = std::make_unique<Layer>();
        m_layer->place = layerPlace();
        m_layer->size = (m_layer->place.size() * m_target.scale).toSize();
    }
    return *m_layer;
}

void PainterContextDevice2D::finishImage(Layer& layer)
{
    if (layer.image.isNull()) {
        return;
    }
    layer.painter->end();
    layer.steps.emplace_back([image = std::exchange(layer.image, QImage())](
                                 QImage& canvas, const PaintRecording::Progress& /*progress*/) {
        QPainter(&canvas).drawImage(0, 0, image);
        return true;
    });
}

void PainterContextDevice2D::flushLayer()
{
    const std::unique_ptr<Layer> layer = std::move(m_layer);
    if (layer == nullptr) {
        return;
    }
    finishImage(*layer);
    PaintRecording::drawLater(
        *m_painter,
        layer->place,
        [size = layer->size,
         steps = std::move(layer->steps)](const PaintRecording::Progress& progress) {
            QImage canvas(size, QImage::Format_ARGB32_Premultiplied);
            canvas.fill(Qt::transparent);
            const double share = 1.0 / static_cast<double>(steps.size());
            for (std::size_t i = 0; i < steps.size(); ++i) {
                const bool goesOn = steps[i](canvas, [&](double fraction) {
                    return progress((static_cast<double>(i) + fraction) * share);
                });
                if (!goesOn) {
                    return QImage();
                }
            }
            return canvas;
        });
}

// ---- very many points

bool PainterContextDevice2D::takesPicture(vtkIdType count) const
{
    // Pixels are those of the screen's way at any number: a chart looks the same with few and with many cases.
    return !m_target.isVector || m_pointCount + static_cast<std::size_t>(count) > maxVectorPoints;
}

PointPictureDeviceInterface::Place PainterContextDevice2D::picturePlace() const
{
    const QRectF place = layerPlace();
    const QSize size = (place.size() * m_target.scale).toSize();
    Place result;
    result.width = size.width();
    result.height = size.height();
    result.scale = static_cast<float>(m_target.scale);
    // Rows of the picture count from the bottom, as those of the chart.
    const double bottom = m_target.size.height() - place.bottom();
    result.axes = {
        PointRaster::axisOf(
            m_matrix.m11() * m_target.scale,
            (m_matrix.dx() - place.left()) * m_target.scale,
            size.width()),
        PointRaster::axisOf(
            m_matrix.m22() * m_target.scale,
            (m_matrix.dy() - bottom) * m_target.scale,
            size.height())};
    return result;
}

void PainterContextDevice2D::drawPicture(std::shared_ptr<const PointPicture> picture)
{
    Layer& target = layer();
    finishImage(target);
    target.steps.emplace_back(
        [picture = std::move(picture)](QImage& canvas, const PaintRecording::Progress& progress) {
            QPainter painter(&canvas);
            return picture->paint(
                [&](int y, const std::uint32_t* row) {
                    const QImage line(
                        reinterpret_cast<const unsigned char*>(row),
                        picture->width(),
                        1,
                        picture->width() * static_cast<int>(sizeof(*row)),
                        QImage::Format_RGBA8888_Premultiplied);
                    painter.drawImage(0, canvas.height() - 1 - y, line);
                },
                progress);
        });
}

// ---- texts

void PainterContextDevice2D::measure(const vtkStdString& text, float bounds[4]) const
{
    std::fill(bounds, bounds + 4, 0.0F);
    int box[4] = {0, 0, 0, 0};
    if (text.empty()
        || !vtkTextRenderer::GetInstance()->GetBoundingBox(TextProp, text, box, m_target.dpi)) {
        return;
    }
    const double scaleX = m_matrix.m11() == 0.0 ? 1.0 : std::abs(m_matrix.m11());
    const double scaleY = m_matrix.m22() == 0.0 ? 1.0 : std::abs(m_matrix.m22());
    bounds[0] = static_cast<float>(box[0] / scaleX);
    bounds[1] = static_cast<float>(box[2] / scaleY);
    bounds[2] = static_cast<float>((box[1] - box[0] + 1) / scaleX);
    bounds[3] = static_cast<float>((box[3] - box[2] + 1) / scaleY);
}

void PainterContextDevice2D::ComputeStringBounds(const vtkStdString& text, float bounds[4])
{
    measure(text, bounds);
    bounds[0] = 0.0F;
    bounds[1] = 0.0F;
}

void PainterContextDevice2D::ComputeJustifiedStringBounds(const char* text, float bounds[4])
{
    measure(vtkStdString(text), bounds);
}

QSizeF PainterContextDevice2D::uprightSize(const vtkStdString& text) const
{
    m_upright->ShallowCopy(TextProp);
    m_upright->SetOrientation(0.0);
    int box[4] = {0, 0, 0, 0};
    if (!vtkTextRenderer::GetInstance()->GetBoundingBox(m_upright, text, box, m_target.dpi)) {
        return {};
    }
    return {box[1] - box[0] + 1.0, box[3] - box[2] + 1.0};
}

void PainterContextDevice2D::DrawString(float* point, const vtkStdString& text)
{
    const QSizeF size = uprightSize(text);
    if (text.empty() || size.isEmpty()) {
        return;
    }
    // The point is that side of the text's bounding box which the justification names.
    const int along = TextProp->GetJustification();
    const int across = TextProp->GetVerticalJustification();
    const QPointF place = m_matrix.map(QPointF(point[0], point[1]));
    const double left = -0.5 * along * size.width();
    const double bottom = -0.5 * across * size.height();
    drawText(
        text,
        toPainter(place.x(), place.y()),
        QRectF(left, -bottom - size.height(), size.width(), size.height()),
        TextProp->GetOrientation());
}

void PainterContextDevice2D::DrawMathTextString(float* point, const vtkStdString& text)
{
    DrawString(point, text);
}

void PainterContextDevice2D::drawTextInBox(
    const vtkStdString& text, vtkTextProperty& property, const QRectF& box)
{
    TextProp->ShallowCopy(&property);
    drawText(
        text,
        toPainter(box.left(), box.top()),
        QRectF(0.0, -box.height(), box.width(), box.height()),
        0.0);
}

double PainterContextDevice2D::stretch(const QFont& font) const
{
    // One for all texts of a font: letters of several widths beside one another look like an accident.
    const QString key = font.key();
    const auto known = m_stretches.find(key);
    if (known != m_stretches.end()) {
        return known->second;
    }
    const std::string sample = "Mean concentration 0.123456789";
    const double width = QFontMetricsF(font).horizontalAdvance(QString::fromStdString(sample));
    const double wanted = uprightSize(sample).width();
    constexpr double narrowest = 0.75;
    constexpr double widest = 1.25;
    const double result =
        width > 0.0 && wanted > 0.0 ? std::clamp(wanted / width, narrowest, widest) : 1.0;
    m_stretches.emplace(key, result);
    return result;
}

void PainterContextDevice2D::drawText(
    const vtkStdString& text, const QPointF& place, const QRectF& box, double angle)
{
    m_upright->ShallowCopy(TextProp);
    m_upright->SetOrientation(0.0);
    vtkTextRenderer::Metrics metrics;
    if (!isFinite(place)
        || !vtkTextRenderer::GetInstance()->GetMetrics(m_upright, text, metrics, m_target.dpi)) {
        return;
    }
    const QFont font = fontOf(*TextProp, m_target.dpi);
    const QFontMetricsF own(font);
    const double factor = stretch(font);
    const QStringList lines = QString::fromStdString(text).split(QLatin1Char('\n'));
    const double justification = 0.5 * TextProp->GetJustification();
    const double lastBaseline = box.bottom() - std::abs(metrics.Descent[1]);
    QPainter& target = painter();
    target.save();
    target.translate(place);
    target.rotate(-angle);
    target.setFont(font);
    target.setPen(analyzer::colorOf(*TextProp));
    for (int i = 0; i < lines.size(); ++i) {
        const double width = own.horizontalAdvance(lines[i]) * factor;
        target.save();
        target.translate(
            box.left() + justification * (box.width() - width),
            lastBaseline - (lines.size() - 1 - i) * own.lineSpacing());
        target.scale(factor, 1.0);
        target.drawText(QPointF(0.0, 0.0), lines[i]);
        target.restore();
    }
    target.restore();
}

// VTK asks for these two, but has deprecated the class that they are about.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

void PainterContextDevice2D::DrawString(float* point, const vtkUnicodeString& text)
{
    DrawString(point, vtkStdString(text.utf8_str()));
}

void PainterContextDevice2D::ComputeStringBounds(const vtkUnicodeString& text, float bounds[4])
{
    ComputeStringBounds(vtkStdString(text.utf8_str()), bounds);
}

#pragma GCC diagnostic pop

// ---- pictures

void PainterContextDevice2D::DrawImage(float place[2], float scale, vtkImageData* image)
{
    const int* size = image->GetDimensions();
    DrawImage(
        vtkRectf(
            place[0],
            place[1],
            static_cast<float>(size[0]) * scale,
            static_cast<float>(size[1]) * scale),
        image);
}

void PainterContextDevice2D::DrawImage(const vtkRectf& place, vtkImageData* image)
{
    const std::array<float, 4> corners{
        place.GetX(),
        place.GetY(),
        place.GetX() + place.GetWidth(),
        place.GetY() + place.GetHeight()};
    const QRectF box(mapped(corners.data()), mapped(corners.data() + 2));
    painter().drawImage(box.normalized(), toImage(*image));
}

// ---- state

void PainterContextDevice2D::SetColor4(unsigned char* color)
{
    Pen->SetColor(color[0], color[1], color[2], color[3]);
    Brush->SetColor(color[0], color[1], color[2], color[3]);
}

void PainterContextDevice2D::SetTexture(vtkImageData* image, int /*properties*/)
{
    Brush->SetTexture(image);
}

void PainterContextDevice2D::SetPointSize(float size)
{
    Pen->SetWidth(size);
}

void PainterContextDevice2D::SetLineWidth(float width)
{
    Pen->SetWidth(width);
}

void PainterContextDevice2D::SetLineType(int type)
{
    Pen->SetLineType(type);
}

void PainterContextDevice2D::SetMatrix(vtkMatrix3x3* matrix)
{
    const double* m = matrix->GetData();
    m_matrix = QTransform(m[0], m[3], m[6], m[1], m[4], m[7], m[2], m[5], m[8]);
}

void PainterContextDevice2D::GetMatrix(vtkMatrix3x3* matrix)
{
    const std::array<double, 9> elements{
        m_matrix.m11(),
        m_matrix.m21(),
        m_matrix.m31(),
        m_matrix.m12(),
        m_matrix.m22(),
        m_matrix.m32(),
        m_matrix.m13(),
        m_matrix.m23(),
        m_matrix.m33()};
    matrix->DeepCopy(elements.data());
}

void PainterContextDevice2D::MultiplyMatrix(vtkMatrix3x3* matrix)
{
    const QTransform before = m_matrix;
    SetMatrix(matrix);
    m_matrix = m_matrix * before; // Qt maps by the left one first
}

void PainterContextDevice2D::PushMatrix()
{
    m_matrices.push_back(m_matrix);
}

void PainterContextDevice2D::PopMatrix()
{
    m_matrix = m_matrices.back();
    m_matrices.pop_back();
}

void PainterContextDevice2D::SetClipping(int* rect)
{
    m_clip = QRectF(rect[0], m_target.size.height() - rect[1] - rect[3], rect[2], rect[3]);
}

void PainterContextDevice2D::EnableClipping(bool enable)
{
    flushLayer();
    m_isClipping = enable;
}

// ---- helpers

QPointF PainterContextDevice2D::toPainter(double x, double y) const
{
    return {x, m_target.size.height() - y};
}

QPointF PainterContextDevice2D::mapped(const float* point) const
{
    const QPointF place =
        m_matrix.map(QPointF(static_cast<double>(point[0]), static_cast<double>(point[1])));
    return toPainter(place.x(), place.y());
}

QPolygonF PainterContextDevice2D::mapped(const float* points, int n) const
{
    QPolygonF polygon;
    polygon.reserve(n);
    for (int i = 0; i < n; ++i) {
        polygon.append(mapped(pointAt(points, i)));
    }
    return polygon;
}

QColor PainterContextDevice2D::colorOf(const unsigned char* colors, int channels, int index) const
{
    if (colors == nullptr) {
        return toColor(Pen->GetColor());
    }
    constexpr int rgba = 4;
    const unsigned char* color = colors + static_cast<std::ptrdiff_t>(channels) * index;
    return {color[0], color[1], color[2], channels == rgba ? color[3] : opaque};
}

QPen PainterContextDevice2D::linePen(const QColor& color) const
{
    QPen pen(color, Pen->GetWidth(), static_cast<Qt::PenStyle>(Pen->GetLineType()), Qt::FlatCap);
    pen.setJoinStyle(Qt::RoundJoin);
    return pen;
}

QRectF PainterContextDevice2D::clip() const
{
    return m_isClipping ? m_clip : QRectF(0.0, 0.0, m_target.size.width(), m_target.size.height());
}

} // namespace analyzer
