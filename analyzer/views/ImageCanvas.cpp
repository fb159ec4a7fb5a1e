#include <analyzer/views/ImageCanvas.h>
#include <analyzer/views/hoverOutline.h>

#include <QAbstractTextDocumentLayout>
#include <QContextMenuEvent>
#include <QCursor>
#include <QMouseEvent>
#include <QPainter>
#include <QTextDocument>
#include <QTextOption>
#include <QWheelEvent>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace analyzer {

namespace {

constexpr std::array<double, 21> scales = {
    1.0 / 64, 1.0 / 32, 1.0 / 16, 1.0 / 8, 1.0 / 6, 1.0 / 4, 1.0 / 3, 1.0 / 2, 2.0 / 3, 1.0, 1.5,
    2.0,      3.0,      4.0,      6.0,     8.0,     12.0,    16.0,    24.0,    32.0,    64.0};
constexpr double scaleTolerance = 1e-6; ///< a scale this near to one of the row is that one
constexpr double blockScale =
    2.0; ///< from here on pixels are drawn as blocks, so that each can be judged
constexpr int checkerSidePx = 8;
constexpr int messageMarginPx = 16;
constexpr int anglePerStep = 120; ///< of a wheel, in Qt's eighths of a degree
constexpr double pixelsPerWheelStep = 60.0;

/// The next scale of the row above (or below) \p scale; the last one beyond its ends.
double nextScale(double scale, bool up)
{
    if (up) {
        const auto* const found =
            std::upper_bound(scales.begin(), scales.end(), scale * (1 + scaleTolerance));
        return found == scales.end() ? scales.back() : *found;
    }
    const auto* const found =
        std::lower_bound(scales.begin(), scales.end(), scale * (1 - scaleTolerance));
    return found == scales.begin() ? scales.front() : *(found - 1);
}

/// Light whatever the palette is: pictures with transparent parts are made for white paper.
QBrush checkerBrush()
{
    QPixmap tile(2 * checkerSidePx, 2 * checkerSidePx);
    tile.fill(Qt::white);
    QPainter painter(&tile);
    const QColor gray(224, 224, 224);
    painter.fillRect(0, 0, checkerSidePx, checkerSidePx, gray);
    painter.fillRect(checkerSidePx, checkerSidePx, checkerSidePx, checkerSidePx, gray);
    return {tile};
}

double clampedToMiddle(double value, double halfSight, double length)
{
    return 2 * halfSight >= length ? length / 2 : std::clamp(value, halfSight, length - halfSight);
}

} // namespace

ImageCanvas::ImageCanvas(QWidget* parent)
    : QWidget(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMinimumSize(80, 60);
    setAccessibleName(tr("Picture"));
}

void ImageCanvas::setPicture(std::vector<QImage> levels)
{
    Q_ASSERT_X(!levels.empty(), "ImageCanvas::setPicture", "there is no picture");
    m_levels = std::move(levels);
    m_message.clear();
    setAccessibleDescription({});
    changeView();
}

void ImageCanvas::setMessage(const QString& message)
{
    endDrag();
    m_levels.clear();
    m_message = message;
    setAccessibleDescription(message);
    changeView();
}

void ImageCanvas::setOutlined(bool isOutlined)
{
    if (isOutlined != m_isOutlined) {
        m_isOutlined = isOutlined;
        update();
    }
}

QSize ImageCanvas::pictureSize() const
{
    return m_levels.empty() ? QSize() : m_levels.front().size();
}

// ---- zoom

void ImageCanvas::setZoom(const ImageCanvasZoom& zoom)
{
    if (zoom != m_zoom) {
        m_zoom = zoom;
        changeView();
    }
}

double ImageCanvas::scale() const
{
    if (!hasPicture()) {
        return 0.0;
    }
    return m_zoom.fits ? fittingScale() : m_zoom.scale;
}

void ImageCanvas::fit()
{
    endDrag();
    ImageCanvasZoom zoom = m_zoom;
    zoom.fits = true;
    setZoom(zoom);
}

void ImageCanvas::showActualSize()
{
    ImageCanvasZoom zoom = m_zoom.fits ? ImageCanvasZoom() : m_zoom;
    zoom.fits = false;
    zoom.scale = 1.0;
    setZoom(zoom);
}

void ImageCanvas::zoomBySteps(int steps)
{
    const QPoint mouse = mapFromGlobal(QCursor::pos());
    const bool isOver = rect().contains(mouse) && underMouse();
    zoomAt(steps, isOver ? QPointF(mouse) * devicePixelRatioF() : deviceMiddle());
}

QPointF ImageCanvas::pictureAt(const QPointF& position) const
{
    const double currentScale = scale();
    if (currentScale <= 0.0) {
        return {};
    }
    return (position * devicePixelRatioF() - pictureRect().topLeft()) / currentScale;
}

void ImageCanvas::zoomAt(int steps, const QPointF& devicePosition)
{
    if (!hasPicture()) {
        return;
    }
    double target = scale();
    for (int i = 0; i < std::abs(steps); ++i) {
        target = nextScale(target, steps > 0);
    }
    // No smaller than fitted, unless that is an enlargement; what is larger than the row may stay so.
    const double smallest = std::min(fittingScale(), 1.0);
    target = steps < 0 ? std::clamp(target, std::min(smallest, scale()), scale())
                       : std::max(target, scale());
    zoomTo(target, devicePosition);
}

void ImageCanvas::zoomTo(double scale, const QPointF& devicePosition)
{
    const QPointF fixed = pictureAt(devicePosition / devicePixelRatioF());
    choose(zoomAround(scale, fixed + (deviceMiddle() - devicePosition) / scale), Gesture::ZoomStep);
}

void ImageCanvas::panBy(const QPointF& devicePixels, Gesture gesture)
{
    if (canPan()) {
        choose(zoomAround(m_zoom.scale, shownCenter() - devicePixels / m_zoom.scale), gesture);
    }
}

void ImageCanvas::choose(const ImageCanvasZoom& zoom, Gesture gesture)
{
    if (zoom != m_zoom) {
        setZoom(zoom);
        Q_EMIT zoomChosen(gesture);
    }
}

void ImageCanvas::endDrag()
{
    m_isDragging = false;
    updateCursor();
    if (m_hasDragged) {
        m_hasDragged = false;
        Q_EMIT zoomChosen(Gesture::DragEnd);
    }
}

/// The place in the picture that is drawn in the middle of the widget while the picture is not fitted.
QPointF ImageCanvas::shownCenter() const
{
    const QPointF halfSight = deviceMiddle() / m_zoom.scale;
    const QSizeF size = pictureSize();
    return {
        clampedToMiddle(m_zoom.centerX * size.width(), halfSight.x(), size.width()),
        clampedToMiddle(m_zoom.centerY * size.height(), halfSight.y(), size.height())};
}

/// No further out than the picture reaches, so that the way back begins at once.
ImageCanvasZoom ImageCanvas::zoomAround(double scale, const QPointF& center) const
{
    const QPointF halfSight = deviceMiddle() / scale;
    const QSizeF size = pictureSize();
    return {
        false,
        scale,
        clampedToMiddle(center.x(), halfSight.x(), size.width()) / size.width(),
        clampedToMiddle(center.y(), halfSight.y(), size.height()) / size.height()};
}

void ImageCanvas::changeView()
{
    m_frame = {};
    updateCursor();
    update();
    Q_EMIT zoomChanged();
}

// ---- geometry, in device pixels

QSize ImageCanvas::deviceSize() const
{
    const double ratio = devicePixelRatioF();
    return {
        static_cast<int>(std::lround(width() * ratio)),
        static_cast<int>(std::lround(height() * ratio))};
}

QPointF ImageCanvas::deviceMiddle() const
{
    return QPointF(deviceSize().width(), deviceSize().height()) / 2;
}

double ImageCanvas::fittingScale() const
{
    return std::min(
        static_cast<double>(deviceSize().width()) / pictureSize().width(),
        static_cast<double>(deviceSize().height()) / pictureSize().height());
}

QRectF ImageCanvas::pictureRect() const
{
    const QSizeF size = QSizeF(pictureSize()) * scale();
    const QPointF topLeft = m_zoom.fits ? deviceMiddle() - QPointF(size.width(), size.height()) / 2
                                        : deviceMiddle() - shownCenter() * m_zoom.scale;
    // From a whole pixel on: at the scale 1 nothing must be between two pixels. Halves always go the same way, although
    // the center is no exact number: pictures move by as many pixels as the mouse.
    constexpr double half = 0.5 + 1e-6;
    return {QPointF(std::floor(topLeft.x() + half), std::floor(topLeft.y() + half)), size};
}

bool ImageCanvas::canPan() const
{
    if (!hasPicture() || m_zoom.fits) {
        return false;
    }
    const QSizeF size = pictureRect().size();
    return size.width() > deviceSize().width() || size.height() > deviceSize().height();
}

// ---- painting

void ImageCanvas::paintEvent(QPaintEvent* /*event*/)
{
    if (!hasPicture()) {
        paintMessage();
        return;
    }
    if (m_frame.isNull() || m_frame.size() != deviceSize()) {
        m_frame = drawnFrame();
    }
    QPainter painter(this);
    painter.drawPixmap(0, 0, m_frame);
    if (m_isOutlined) {
        drawHoverOutline(painter, rect());
    }
}

QPixmap ImageCanvas::drawnFrame() const
{
    QPixmap frame(deviceSize());
    frame.fill(palette().color(QPalette::Window));
    QPainter painter(&frame);
    const QRectF target = pictureRect();
    const QRectF visible = target & QRectF(frame.rect());
    painter.setClipRect(visible);
    if (m_levels.front().hasAlphaChannel()) {
        painter.setBrushOrigin(target.topLeft());
        painter.fillRect(visible, checkerBrush());
    }

    // The smallest level that is still enlarged by nothing: what remains is less than a halving.
    std::size_t number = 0;
    while (number + 1 < m_levels.size() && m_levels[number + 1].width() >= target.width()
           && m_levels[number + 1].height() >= target.height()) {
        ++number;
    }
    const QImage& level = m_levels[number];
    const double scaleX = target.width() / level.width();
    const double scaleY = target.height() / level.height();

    // Only what is in sight and a pixel around it: Qt's scaling cannot count the pixels of very large pictures.
    const QRectF inSight(
        (visible.x() - target.x()) / scaleX,
        (visible.y() - target.y()) / scaleY,
        visible.width() / scaleX,
        visible.height() / scaleY);
    const QRect part = inSight.toAlignedRect().adjusted(-1, -1, 1, 1) & level.rect();
    painter.translate(target.x() + part.x() * scaleX, target.y() + part.y() * scaleY);
    painter.scale(scaleX, scaleY);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, scale() < blockScale);
    painter.drawImage(0, 0, part == level.rect() ? level : level.copy(part));
    painter.end();
    frame.setDevicePixelRatio(devicePixelRatioF());
    return frame;
}

void ImageCanvas::paintMessage()
{
    QPainter painter(this);
    painter.fillRect(rect(), palette().color(QPalette::Window));
    QTextDocument document;
    document.setDefaultFont(font());
    document.setDocumentMargin(0);
    QTextOption option(Qt::AlignHCenter);
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere); // a path may have no blanks
    document.setDefaultTextOption(option);
    document.setPlainText(m_message);
    document.setTextWidth(std::max(width() - 2 * messageMarginPx, 1));
    painter.translate(messageMarginPx, std::max((height() - document.size().height()) / 2, 0.0));
    QAbstractTextDocumentLayout::PaintContext context;
    context.palette = palette();
    context.palette.setColor(QPalette::Text, palette().color(QPalette::WindowText));
    document.documentLayout()->draw(&painter, context);
}

void ImageCanvas::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    changeView();
}

void ImageCanvas::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange) {
        m_frame = {};
        update();
    }
}

// ---- mouse

void ImageCanvas::mousePressEvent(QMouseEvent* event)
{
    const bool pans = event->button() == Qt::LeftButton || event->button() == Qt::MiddleButton;
    if (pans && canPan()) {
        m_isDragging = true;
        m_dragPosition = event->pos();
        updateCursor();
    }
    event->accept();
    Q_EMIT pressed();
}

void ImageCanvas::mouseMoveEvent(QMouseEvent* event)
{
    if (event->buttons() == Qt::NoButton && m_isDragging) {
        endDrag(); // the release went to somebody else
    }
    if (!m_isDragging) {
        return;
    }
    const QPoint moved = event->pos() - m_dragPosition;
    m_dragPosition = event->pos();
    const ImageCanvasZoom before = m_zoom;
    panBy(QPointF(moved) * devicePixelRatioF(), Gesture::Drag);
    m_hasDragged = m_hasDragged || m_zoom != before;
}

void ImageCanvas::mouseReleaseEvent(QMouseEvent* /*event*/)
{
    endDrag();
}

void ImageCanvas::wheelEvent(QWheelEvent* event)
{
    if (!event->modifiers().testFlag(Qt::ControlModifier)) {
        if (!canPan()) {
            event->ignore();
            return;
        }
        const QPointF angle = event->angleDelta();
        panBy(angle / anglePerStep * pixelsPerWheelStep * devicePixelRatioF(), Gesture::PanStep);
        event->accept();
        return;
    }
    m_wheelAngle += event->angleDelta().y();
    const int steps = m_wheelAngle / anglePerStep;
    if (steps != 0) {
        m_wheelAngle -= steps * anglePerStep;
        zoomAt(steps, event->position() * devicePixelRatioF());
    }
    event->accept();
}

void ImageCanvas::contextMenuEvent(QContextMenuEvent* event)
{
    event->accept();
    Q_EMIT menuRequested(
        event->reason() == QContextMenuEvent::Mouse ? event->globalPos()
                                                    : mapToGlobal(rect().center()));
}

void ImageCanvas::updateCursor()
{
    if (m_isDragging) {
        setCursor(Qt::ClosedHandCursor);
    } else if (canPan()) {
        setCursor(Qt::OpenHandCursor);
    } else {
        unsetCursor();
    }
}

} // namespace analyzer
