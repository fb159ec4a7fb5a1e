#pragma once

class QPainter;
class QVTKOpenGLNativeWidget;

namespace analyzer {

/// Whether paintChart() can paint what \p widget shows: scenes of VTK's charts in two dimensions, with color bars.
[[nodiscard]] bool isPaintableChart(QVTKOpenGLNativeWidget& widget);

/// Paints the chart that \p widget shows with \p painter, whose units are device-independent pixels of the widget with
/// the origin at its top left corner.
///
/// The chart is laid out as it would be on the screen, but nothing is drawn there. \p scale is the number of pixels of
/// the picture per unit, those of embedded pictures where the painter keeps shapes, which \p isVector says.
void paintChart(QVTKOpenGLNativeWidget& widget, QPainter& painter, double scale, bool isVector);

} // namespace analyzer
