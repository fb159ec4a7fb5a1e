#include <analyzer/panels/VerticalScrollArea.h>

#include <QEvent>
#include <QScrollBar>

#include <algorithm>

namespace analyzer {

VerticalScrollArea::VerticalScrollArea(QWidget* parent)
    : QScrollArea(parent)
{
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setFocusPolicy(Qt::NoFocus);
}

QSize VerticalScrollArea::sizeHint() const
{
    return minimumSizeHint().expandedTo(widget() == nullptr ? QSize() : widget()->sizeHint());
}

QSize VerticalScrollArea::minimumSizeHint() const
{
    constexpr int minimumHeight = 60;
    constexpr int leastLetters = 38; // so that another content does not change the width
    const int width = std::max(
        widget() == nullptr ? 0 : widget()->minimumSizeHint().width(),
        leastLetters * fontMetrics().averageCharWidth());
    return {width + verticalScrollBar()->sizeHint().width(), minimumHeight};
}

bool VerticalScrollArea::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == widget() && event->type() == QEvent::LayoutRequest) {
        updateGeometry();
    }
    return QScrollArea::eventFilter(watched, event);
}

} // namespace analyzer
