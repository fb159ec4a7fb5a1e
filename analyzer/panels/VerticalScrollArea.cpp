#include <analyzer/panels/VerticalScrollArea.h>

#include <QEvent>
#include <QScrollBar>

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
    const int width = widget() == nullptr ? 0 : widget()->minimumSizeHint().width();
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
