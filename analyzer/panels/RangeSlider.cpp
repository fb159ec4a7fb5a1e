#include <analyzer/panels/RangeHandle.h>
#include <analyzer/panels/RangeSlider.h>

#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace analyzer {

namespace {

/// Between two colors, \p part of the way from \p from to \p to.
QColor mixed(const QColor& from, const QColor& to, double part)
{
    const auto mix = [part](double one, double other) { return one + (other - one) * part; };
    return QColor::fromRgbF(
        mix(from.redF(), to.redF()),
        mix(from.greenF(), to.greenF()),
        mix(from.blueF(), to.blueF()));
}

} // namespace

RangeSlider::RangeSlider(
    const ValueScale& scale,
    std::vector<std::size_t> counts,
    std::optional<double> firstWhole,
    const QString& variable,
    QWidget* parent)
    : QWidget(parent)
    , m_scale(scale)
    , m_counts(std::move(counts))
    , m_largestCount(*std::max_element(m_counts.begin(), m_counts.end()))
    , m_firstWhole(firstWhole)
    , m_range{-std::numeric_limits<double>::infinity(), std::numeric_limits<double>::infinity()}
    , m_lower(makeHandle(true, tr("Lower end of %1").arg(variable)))
    , m_upper(makeHandle(false, tr("Upper end of %1").arg(variable)))
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

RangeHandle* RangeSlider::makeHandle(bool isLower, const QString& name)
{
    auto* handle =
        new RangeHandle(isLower ? RangeHandle::End::Lower : RangeHandle::End::Upper, this);
    handle->setAccessibleName(name);
    handle->setToolTip(isLower ? tr("Lower end") : tr("Upper end"));
    connect(handle, &RangeHandle::gestureStarted, this, &RangeSlider::gestureStarted);
    connect(handle, &RangeHandle::gestureFinished, this, &RangeSlider::gestureFinished);
    connect(handle, &RangeHandle::draggedTo, this, [this, handle](int x) {
        move(handle, m_scale.value(positionAt(x)));
    });
    connect(handle, &RangeHandle::steppedBy, this, [this, handle](double step) {
        move(handle, m_scale.stepped(end(handle), step));
    });
    connect(handle, &RangeHandle::sentTo, this, [this, handle](double place) {
        move(handle, m_scale.value(place));
    });
    return handle;
}

void RangeSlider::setRange(const Range& range)
{
    m_range = range;
    placeHandles();
}

void RangeSlider::setKept(bool inverted, bool enabled)
{
    m_inverted = inverted;
    m_filters = enabled;
    update();
}

void RangeSlider::setNames(const QString& prefix)
{
    setObjectName(prefix + QStringLiteral("-slider"));
    m_lower->setObjectName(prefix + QStringLiteral("-lower"));
    m_upper->setObjectName(prefix + QStringLiteral("-upper"));
}

QSize RangeSlider::sizeHint() const
{
    constexpr int letters = 30;
    constexpr int linesOfPlot = 3;
    const QFontMetrics metrics = fontMetrics();
    return {
        letters * metrics.averageCharWidth(),
        linesOfPlot * metrics.height() + m_lower->sizeHint().height()};
}

QSize RangeSlider::minimumSizeHint() const
{
    constexpr int letters = 12;
    return {letters * fontMetrics().averageCharWidth(), sizeHint().height()};
}

void RangeSlider::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    const int x = event->pos().x();
    const int toLower = std::abs(x - xOf(m_range.min));
    const int toUpper = std::abs(x - xOf(m_range.max));
    m_dragged =
        toLower < toUpper || (toLower == toUpper && x < xOf(m_range.min)) ? m_lower : m_upper;
    m_dragged->setFocus(Qt::MouseFocusReason);
    Q_EMIT gestureStarted();
    move(m_dragged, m_scale.value(positionAt(x)));
}

void RangeSlider::mouseMoveEvent(QMouseEvent* event)
{
    if (m_dragged != nullptr) {
        move(m_dragged, m_scale.value(positionAt(event->pos().x())));
    }
}

void RangeSlider::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && std::exchange(m_dragged, nullptr) != nullptr) {
        Q_EMIT gestureFinished();
    }
}

void RangeSlider::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    const QRect area = plot();
    painter.fillRect(area, palette().color(QPalette::Base));
    if (m_firstWhole) {
        drawWholes(painter);
    } else {
        drawParts(painter);
    }
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawRect(area.adjusted(0, 0, -1, -1));
    painter.setPen(palette().color(QPalette::WindowText));
    for (const double end : {m_range.min, m_range.max}) {
        painter.drawLine(xOf(end), area.top(), xOf(end), area.bottom());
    }
}

QRect RangeSlider::bar(std::size_t index) const
{
    const std::size_t count = m_counts[index];
    if (count == 0) {
        return {};
    }
    const QRect area = plot();
    const double share = static_cast<double>(count) / static_cast<double>(m_largestCount);
    const int height = std::max(1, static_cast<int>(std::lround(share * (area.height() - 2))));
    const int top = area.bottom() - height;
    const auto place = static_cast<int>(index);
    const auto barCount = static_cast<int>(m_counts.size());
    if (!m_firstWhole) {
        const int left = area.left() + place * area.width() / barCount;
        const int right = area.left() + (place + 1) * area.width() / barCount;
        return {left, top, right - left, height};
    }
    constexpr double shareOfStep = 0.6;
    const int halfWidth =
        static_cast<int>(shareOfStep * area.width() / std::max(1, barCount - 1) / 2.0);
    const int middle = xOf(*m_firstWhole + place);
    return QRect(QPoint(middle - halfWidth, top), QPoint(middle + halfWidth, top + height - 1))
        .intersected(area);
}

void RangeSlider::drawBar(QPainter& painter, const QRect& rectangle, bool inside) const
{
    const QColor base = palette().color(QPalette::Base);
    const QColor text = palette().color(QPalette::Text);
    if (!m_filters) {
        painter.fillRect(rectangle, mixed(base, text, 0.5));
    } else if (inside != m_inverted) {
        painter.fillRect(rectangle, palette().color(QPalette::Highlight));
    } else {
        painter.fillRect(rectangle, mixed(base, text, 0.12));
        painter.fillRect(rectangle, QBrush(mixed(base, text, 0.55), Qt::BDiagPattern));
    }
}

void RangeSlider::drawParts(QPainter& painter) const
{
    // An end may lie within a bar.
    const QRect area = plot();
    const int lower = xOf(m_range.min);
    const int upper = xOf(m_range.max);

    const struct
    {
        int from;
        int to;
        bool inside;
    } stretches[] = {
        {area.left(), lower, false}, {lower, upper, true}, {upper, area.right() + 1, false}};

    for (const auto& stretch : stretches) {
        const QRect visible(stretch.from, area.top(), stretch.to - stretch.from, area.height());
        for (std::size_t index = 0; index < m_counts.size(); ++index) {
            drawBar(painter, bar(index).intersected(visible), stretch.inside);
        }
    }
}

void RangeSlider::drawWholes(QPainter& painter) const
{
    for (std::size_t index = 0; index < m_counts.size(); ++index) {
        const double value = *m_firstWhole + static_cast<double>(index);
        drawBar(painter, bar(index), value >= m_range.min && value <= m_range.max);
    }
}

void RangeSlider::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    placeHandles();
}

QRect RangeSlider::plot() const
{
    const QSize handle = m_lower->sizeHint();
    return rect().adjusted(handle.width(), 0, -handle.width(), -handle.height());
}

int RangeSlider::xOf(double value) const
{
    const QRect area = plot();
    return area.left()
        + static_cast<int>(std::lround(m_scale.position(value) * (area.width() - 1)));
}

double RangeSlider::positionAt(int x) const
{
    const QRect area = plot();
    return static_cast<double>(x - area.left()) / std::max(1, area.width() - 1);
}

double& RangeSlider::end(const RangeHandle* handle)
{
    return handle == m_lower ? m_range.min : m_range.max;
}

void RangeSlider::move(RangeHandle* handle, double value)
{
    if (handle == m_lower) {
        m_range.min = std::min(value, m_range.max);
    } else {
        m_range.max = std::max(value, m_range.min);
    }
    placeHandles();
    Q_EMIT moved(m_range.min, m_range.max);
}

void RangeSlider::placeHandles()
{
    const QSize size = m_lower->sizeHint();
    const int top = plot().bottom() + 1;
    m_lower->setGeometry(QRect(QPoint(xOf(m_range.min) + 1 - size.width(), top), size));
    m_upper->setGeometry(QRect(QPoint(xOf(m_range.max), top), size));
    m_lower->setPlace(m_scale.position(m_range.min));
    m_upper->setPlace(m_scale.position(m_range.max));
    update();
}

} // namespace analyzer
