#include <dataviews/platform/widgets/QxtLabel.h>

#include <QEvent>
#include <QFontMetrics>
#include <QHelpEvent>
#include <QPainter>
#include <QTextDocument>
#include <QToolTip>

namespace {

constexpr int padding = 2; // device-independent pixels around the text

} // namespace

QxtLabel::QxtLabel(QWidget* parent)
    : QFrame(parent)
{}

QxtLabel::QxtLabel(const QString& text, QWidget* parent)
    : QFrame(parent)
    , m_text(text)
{}

QxtLabel::~QxtLabel() = default;

void QxtLabel::setAlignment(Qt::Alignment alignment)
{
    m_alignment = alignment;
    update();
}

void QxtLabel::setRotation(Rotation rotation)
{
    m_rotation = rotation;
    updateGeometry();
    update();
}

void QxtLabel::setText(const QString& text)
{
    if (text == m_text) {
        return;
    }
    m_text = text;
    updateGeometry();
    update();
}

QSize QxtLabel::sizeHint() const
{
    ensurePolished(); // a style sheet's font counts from the first layout on
    return hint(fontMetrics().horizontalAdvance(m_text));
}

QSize QxtLabel::minimumSizeHint() const
{
    ensurePolished();
    return hint(fontMetrics().horizontalAdvance(QStringLiteral("…")));
}

void QxtLabel::paintEvent(QPaintEvent* event)
{
    QFrame::paintEvent(event);
    QPainter painter(this);
    painter.setPen(palette().color(foregroundRole()));

    const QRect area = contentsRect();
    QRect line(0, 0, area.width(), area.height());
    switch (m_rotation) {
    case NoRotation:
        painter.translate(area.topLeft());
        break;
    case Clockwise:
        painter.translate(area.x() + area.width(), area.y());
        painter.rotate(90);
        line.setSize(area.size().transposed());
        break;
    case UpsideDown:
        painter.translate(area.x() + area.width(), area.y() + area.height());
        painter.rotate(180);
        break;
    case CounterClockwise:
        painter.translate(area.x(), area.y() + area.height());
        painter.rotate(-90);
        line.setSize(area.size().transposed());
        break;
    }
    painter.drawText(
        line.adjusted(padding, padding, -padding, -padding),
        int(m_alignment) | Qt::TextSingleLine,
        shownText());
}

void QxtLabel::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
        updateGeometry();
        update();
    }
    QFrame::changeEvent(event);
}

bool QxtLabel::event(QEvent* event)
{
    if (event->type() == QEvent::ToolTip && toolTip().isEmpty() && shownText() != m_text) {
        // As plain text, also where it looks like markup.
        const QString text = Qt::mightBeRichText(m_text)
            ? QStringLiteral("<span>%1</span>").arg(m_text.toHtmlEscaped())
            : m_text;
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), text, this);
        return true;
    }
    return QFrame::event(event);
}

bool QxtLabel::isUpright() const
{
    return m_rotation == Clockwise || m_rotation == CounterClockwise;
}

QSize QxtLabel::hint(int textWidth) const
{
    const QSize line(textWidth + 2 * padding, fontMetrics().height() + 2 * padding);
    const QMargins margins = contentsMargins(); // the frame included
    const QSize frame(margins.left() + margins.right(), margins.top() + margins.bottom());
    return (isUpright() ? line.transposed() : line) + frame;
}

QString QxtLabel::shownText() const
{
    const int length = isUpright() ? contentsRect().height() : contentsRect().width();
    return fontMetrics().elidedText(m_text, Qt::ElideRight, length - 2 * padding);
}
