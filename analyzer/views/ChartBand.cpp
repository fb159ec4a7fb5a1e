#include <analyzer/views/ChartBand.h>
#include <analyzer/views/countText.h>

#include <dataviews/common/charts/ChartXY.h>

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>
#include <QVTKOpenGLNativeWidget.h>

#include <algorithm>
#include <utility>

namespace analyzer {

namespace {

// Device-independent pixels.
constexpr int textDistance = 16; ///< from the mouse
constexpr int textPaddingX = 6;
constexpr int textPaddingY = 3;
constexpr int lineMargin = 3; ///< around the band, for its line
constexpr double outerWidth = 3.0;
constexpr double innerWidth = 1.0;

/// The band and the text beside the mouse, in a widget that is no larger than both: what lies under it is composed anew
/// when it changes.
class BandOverlay : public QWidget
{
public:
    explicit BandOverlay(QWidget& parent)
        : QWidget(&parent)
    {
        setObjectName(QStringLiteral("ChartBand"));
        setAttribute(Qt::WA_TransparentForMouseEvents);
        setAttribute(Qt::WA_NoSystemBackground);
        hide();
    }

    /// All in the parent's coordinates; no text is shown if \p text is empty.
    void showBand(const QPainterPath& band, const QString& text, const QPointF& mouse)
    {
        m_band = band;
        m_text = text;
        m_textPlace = placeOfText(mouse);
        QRect place = band.boundingRect().toAlignedRect().adjusted(
            -lineMargin, -lineMargin, lineMargin, lineMargin);
        place |= m_textPlace;
        setGeometry(place & parentWidget()->rect());
        update();
        show();
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override
    {
        QPainter painter(this);
        painter.translate(-geometry().topLeft());
        painter.setRenderHint(QPainter::Antialiasing);
        // In two tones, to be seen on any background and over points of any color.
        constexpr QRgb fill = qRgba(128, 128, 128, 64);
        painter.setBrush(QColor::fromRgba(fill));
        painter.setPen(QPen(Qt::white, outerWidth));
        painter.drawPath(m_band);
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(Qt::black, innerWidth));
        painter.drawPath(m_band);
        if (m_text.isEmpty()) {
            return;
        }
        painter.setBrush(palette().color(QPalette::ToolTipBase));
        painter.setPen(palette().color(QPalette::ToolTipText));
        constexpr double halfPixel = 0.5;
        painter.drawRect(
            QRectF(m_textPlace).adjusted(halfPixel, halfPixel, -halfPixel, -halfPixel));
        painter.drawText(m_textPlace, Qt::AlignCenter, m_text);
    }

private:
    /// Below and right of the mouse, or on the other side where the parent ends.
    [[nodiscard]] QRect placeOfText(const QPointF& mouse) const
    {
        if (m_text.isEmpty()) {
            return {};
        }
        const QFontMetrics metrics = fontMetrics();
        const QSize size(
            metrics.horizontalAdvance(m_text) + 2 * textPaddingX,
            metrics.height() + 2 * textPaddingY);
        const QPoint point = mouse.toPoint();
        const auto begin = [](int place, int length, int end) {
            const int before = place - textDistance - length;
            const int wanted = place + textDistance + length <= end ? place + textDistance : before;
            return std::clamp(wanted, 0, std::max(0, end - length));
        };
        return {
            begin(point.x(), size.width(), parentWidget()->width()),
            begin(point.y(), size.height(), parentWidget()->height()),
            size.width(),
            size.height()};
    }

    QPainterPath m_band;
    QString m_text;
    QRect m_textPlace;
};

} // namespace

ChartBand::ChartBand(
    QVTKOpenGLNativeWidget& widget, ChartXY& chart, std::function<SelectionPreview()> makePreview)
    : m_widget(&widget)
    , m_chart(&chart)
    , m_makePreview(std::move(makePreview))
    , m_overlay(new BandOverlay(widget))
{
    chart.setPaintsBand(false);
    widget.installEventFilter(this);
    m_later.setSingleShot(true);
    m_later.setInterval(0);
    connect(&m_later, &QTimer::timeout, this, &ChartBand::look);
}

ChartBand::~ChartBand()
{
    m_chart->setPaintsBand(true);
    // May have gone with the chart's widget.
    delete m_overlay.data();
}

void ChartBand::forgetCases()
{
    m_preview.reset();
    if (m_overlay && !m_overlay->isHidden()) {
        m_later.start();
    }
}

void ChartBand::end()
{
    m_later.stop();
    m_preview.reset();
    m_text.clear();
    if (m_overlay) {
        m_overlay->hide();
    }
}

QString ChartBand::changeText(const SelectionPreview::Change& change)
{
    QStringList parts;
    if (change.added > 0) {
        parts += QLatin1Char('+') + countText(change.added);
    }
    if (change.removed > 0) {
        parts += QChar(0x2212) + countText(change.removed); // minus sign
    }
    return parts.isEmpty() ? QString::fromUtf8("±0") : parts.join(QLatin1Char(' '));
}

bool ChartBand::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::MouseMove: {
        const auto* move = static_cast<QMouseEvent*>(event);
        if (move->buttons() != Qt::NoButton) {
            m_mouse = move->localPos();
            m_extends = move->modifiers().testFlag(Qt::ControlModifier);
            // The chart hears of the move when it has passed this filter.
            m_later.start();
        }
        break;
    }
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
        if (static_cast<QKeyEvent*>(event)->key() == Qt::Key_Control && !m_text.isEmpty()) {
            m_extends = event->type() == QEvent::KeyPress;
            m_later.start();
        }
        break;
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::Hide:
        end();
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

void ChartBand::look()
{
    if (!m_widget || !m_overlay) {
        return;
    }
    const double ratio = m_widget->devicePixelRatioF();
    const auto inWidget = [&](const vtkVector2f& place) {
        return QPointF(place.GetX() / ratio, m_widget->height() - place.GetY() / ratio);
    };
    QPainterPath band;
    m_text.clear();
    if (const std::optional<SelectionArea> area = m_chart->draggedSelection()) {
        if (!m_preview || !m_preview->isCurrent()) {
            m_preview.emplace(m_makePreview());
        }
        m_text = changeText(m_preview->change(*area, m_extends));
        if (area->isPolygon()) {
            QPolygonF way;
            for (const vtkVector2f& corner : area->corners()) {
                way << inWidget(corner);
            }
            band.addPolygon(way);
            band.closeSubpath();
        } else {
            band.addRect(QRectF(inWidget(area->corners().front()), inWidget(area->corners().back()))
                             .normalized());
        }
    } else if (const std::optional<vtkRectf> box = m_chart->draggedZoom()) {
        const vtkVector2f begin(box->GetX(), box->GetY());
        const vtkVector2f end(box->GetX() + box->GetWidth(), box->GetY() + box->GetHeight());
        band.addRect(QRectF(inWidget(begin), inWidget(end)).normalized());
    }
    if (band.isEmpty()) {
        m_overlay->hide();
        return;
    }
    static_cast<BandOverlay*>(m_overlay.data())->showBand(band, m_text, m_mouse);
}

} // namespace analyzer
