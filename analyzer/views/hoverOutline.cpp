#include <analyzer/views/hoverOutline.h>

#include <QPainter>

namespace analyzer {

namespace {

constexpr int darkPx = 2;

void fillBorder(QPainter& painter, const QRect& place, int width, const QColor& color)
{
    painter.fillRect(place.left(), place.top(), place.width(), width, color);
    painter.fillRect(place.left(), place.bottom() + 1 - width, place.width(), width, color);
    painter.fillRect(place.left(), place.top(), width, place.height(), color);
    painter.fillRect(place.right() + 1 - width, place.top(), width, place.height(), color);
}

} // namespace

void drawHoverOutline(QPainter& painter, const QRect& place)
{
    fillBorder(
        painter,
        place.adjusted(darkPx, darkPx, -darkPx, -darkPx),
        hoverOutlinePx - darkPx,
        Qt::white);
    fillBorder(painter, place, darkPx, Qt::black);
}

} // namespace analyzer
