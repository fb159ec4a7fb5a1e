#include <analyzer/panels/ChooserFrame.h>

#include <QMouseEvent>
#include <QScreen>
#include <QStyle>

#include <algorithm>

namespace analyzer {

ChooserFrame::ChooserFrame(QWidget* parent)
    : QFrame(parent, Qt::Popup)
{
    setFrameShape(QFrame::StyledPanel);
}

int ChooserFrame::widthFor(const QWidget& field, int textPx) const
{
    constexpr int mostWidth = 480;
    constexpr int aroundList = 16;
    const int bar = style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, this);
    return std::max(field.width(), std::min(textPx + bar + aroundList, mostWidth));
}

int ChooserFrame::rowsFor(int count)
{
    constexpr int mostRows = 14;
    return std::min(std::max(count, 1), mostRows);
}

void ChooserFrame::mousePressEvent(QMouseEvent* event)
{
    // A press on the field closes the window and does not open it again.
    const QWidget* field = parentWidget();
    setAttribute(
        Qt::WA_NoMouseReplay,
        field != nullptr && field->rect().contains(field->mapFromGlobal(event->globalPos())));
    QFrame::mousePressEvent(event);
}

void ChooserFrame::placeAt(const QWidget& field, const QSize& size)
{
    const QRect screen = field.screen()->availableGeometry();
    QPoint corner = field.mapToGlobal(QPoint(0, field.height()));
    if (corner.y() + size.height() > screen.bottom()) {
        corner.setY(std::max(screen.top(), field.mapToGlobal(QPoint(0, 0)).y() - size.height()));
    }
    corner.setX(std::max(screen.left(), std::min(corner.x(), screen.right() - size.width())));
    setGeometry(QRect(corner, size));
}

} // namespace analyzer
