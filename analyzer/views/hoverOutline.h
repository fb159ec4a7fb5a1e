#pragma once

class QPainter;
class QRect;

namespace analyzer {

/// How thick drawHoverOutline() is.
constexpr int hoverOutlinePx = 3;

/// Draws the outline of the hovered case just within \p place: in two tones, to be seen on any background.
void drawHoverOutline(QPainter& painter, const QRect& place);

} // namespace analyzer
