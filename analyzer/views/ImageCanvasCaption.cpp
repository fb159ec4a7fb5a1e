#include <analyzer/views/ImageCanvasCaption.h>

#include <QFontMetrics>
#include <QPainter>
#include <QStyle>

namespace analyzer {

namespace {

constexpr int indentPx = 3;
constexpr int paddingPx = 2;

} // namespace

ImageCanvasCaption::ImageCanvasCaption(QWidget* parent)
    : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
}

void ImageCanvasCaption::setCurrent(bool isCurrent)
{
    if (isCurrent != m_isCurrent) {
        m_isCurrent = isCurrent;
        update();
    }
}

QSize ImageCanvasCaption::sizeHint() const
{
    return {QLabel::sizeHint().width(), fontMetrics().height() + 2 * paddingPx};
}

void ImageCanvasCaption::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    if (m_isCurrent) {
        painter.fillRect(rect(), palette().highlight());
    }
    const QString shown = fontMetrics().elidedText(text(), Qt::ElideMiddle, width() - 2 * indentPx);
    style()->drawItemText(
        &painter,
        rect().adjusted(indentPx, 0, -indentPx, 0),
        Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
        palette(),
        isEnabled(),
        shown,
        m_isCurrent ? QPalette::HighlightedText : foregroundRole());
}

} // namespace analyzer
