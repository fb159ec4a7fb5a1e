#include <analyzer/panels/RangeHandle.h>

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QSignalBlocker>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

namespace analyzer {

namespace {

constexpr double singleStepPart = 0.01;
constexpr double pageStepPart = 0.1;

std::optional<double> stepOf(int key)
{
    switch (key) {
    case Qt::Key_Left:
    case Qt::Key_Down:
        return -singleStepPart;
    case Qt::Key_Right:
    case Qt::Key_Up:
        return singleStepPart;
    case Qt::Key_PageDown:
        return -pageStepPart;
    case Qt::Key_PageUp:
        return pageStepPart;
    default:
        return std::nullopt;
    }
}

} // namespace

RangeHandle::RangeHandle(End end, QWidget* parent)
    : QAbstractSlider(parent)
    , m_end(end)
{
    setOrientation(Qt::Horizontal);
    setRange(0, steps);
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::SizeHorCursor);
    connect(this, &QAbstractSlider::valueChanged, this, [this](int value) {
        Q_EMIT gestureStarted();
        Q_EMIT sentTo(static_cast<double>(value) / steps);
        Q_EMIT gestureFinished();
    });
}

QSize RangeHandle::sizeHint() const
{
    constexpr int leastWidth = 9;
    const int width = std::max(leastWidth, fontMetrics().height() * 2 / 3);
    return {width, width * 3 / 2};
}

void RangeHandle::setPlace(double place)
{
    const QSignalBlocker blocker(this);
    setValue(static_cast<int>(std::lround(place * steps)));
}

void RangeHandle::focusOutEvent(QFocusEvent* event)
{
    finishGesture();
    QAbstractSlider::focusOutEvent(event);
    update();
}

void RangeHandle::keyPressEvent(QKeyEvent* event)
{
    const std::optional<double> step = stepOf(event->key());
    const bool isEnd = event->key() == Qt::Key_Home || event->key() == Qt::Key_End;
    if (!step && !isEnd) {
        event->ignore();
        return;
    }
    event->accept();
    if (!event->isAutoRepeat()) {
        Q_EMIT gestureStarted();
        m_isKeyDown = true;
    }
    if (step) {
        Q_EMIT steppedBy(*step);
    } else {
        Q_EMIT sentTo(event->key() == Qt::Key_Home ? 0.0 : 1.0);
    }
}

void RangeHandle::keyReleaseEvent(QKeyEvent* event)
{
    if (!event->isAutoRepeat()) {
        finishGesture();
    }
    QAbstractSlider::keyReleaseEvent(event);
}

void RangeHandle::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    setFocus(Qt::MouseFocusReason);
    raise();
    m_grip = mapToParent(event->pos()).x() - edge();
    m_isDragged = true;
    Q_EMIT gestureStarted();
}

void RangeHandle::mouseMoveEvent(QMouseEvent* event)
{
    const int x = mapToParent(event->pos()).x() - m_grip;
    // A hand that trembles does not round a number that was typed.
    if (m_isDragged && x != edge()) {
        Q_EMIT draggedTo(x);
    }
}

void RangeHandle::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton) {
        finishGesture();
    }
}

void RangeHandle::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    // A flag on the side of its end, so that two handles at the same place are both there to take.
    const QRectF area = QRectF(rect()).adjusted(1.0, 0.5, -1.0, -1.0);
    const bool isLower = m_end == End::Lower;
    const double straight = isLower ? area.right() : area.left();
    const double slanted = isLower ? area.left() : area.right();
    QPolygonF flag;
    flag << QPointF(straight, area.top()) << QPointF(straight, area.bottom())
         << QPointF(slanted, area.bottom()) << QPointF(slanted, area.top() + area.width() * 0.6);
    const QColor edgeColor = palette().color(QPalette::WindowText);
    if (hasFocus()) {
        constexpr double focusLine = 2.0;
        painter.setPen(QPen(edgeColor, focusLine));
        painter.setBrush(palette().color(QPalette::Highlight));
    } else {
        painter.setPen(QPen(edgeColor, 1.0));
        painter.setBrush(palette().color(QPalette::Button));
    }
    painter.drawPolygon(flag);
}

void RangeHandle::wheelEvent(QWheelEvent* event)
{
    event->ignore(); // scrolls what is around
}

int RangeHandle::edge() const
{
    return m_end == End::Lower ? geometry().right() : geometry().left();
}

void RangeHandle::finishGesture()
{
    const bool wasDragged = std::exchange(m_isDragged, false);
    const bool wasKeyDown = std::exchange(m_isKeyDown, false);
    if (wasDragged || wasKeyDown) {
        Q_EMIT gestureFinished();
    }
}

} // namespace analyzer
