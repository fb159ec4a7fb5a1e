#include <analyzer/panels/ElidedLabel.h>
#include <analyzer/panels/plainToolTip.h>

#include <QPainter>
#include <QStyle>

namespace analyzer {

ElidedLabel::ElidedLabel(const QString& text, QWidget* parent)
    : QLabel(text, parent)
{
    setTextFormat(Qt::PlainText);
    setToolTip(plainToolTip(text));
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
}

QSize ElidedLabel::minimumSizeHint() const
{
    constexpr int leastLetters = 6;
    return {leastLetters * fontMetrics().averageCharWidth(), fontMetrics().height()};
}

void ElidedLabel::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    const QRect area = contentsRect();
    style()->drawItemText(
        &painter,
        area,
        static_cast<int>(Qt::AlignVCenter | Qt::AlignLeft),
        palette(),
        isEnabled(),
        fontMetrics().elidedText(text().simplified(), Qt::ElideRight, area.width()),
        foregroundRole());
}

} // namespace analyzer
