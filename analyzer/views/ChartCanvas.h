#pragma once

#include <QVTKOpenGLNativeWidget.h>

namespace analyzer {

/// The widget that a chart is painted in.
///
/// Does not paint in the middle of taking another size or place, as QOpenGLWidget does at each step of a layout, but
/// once, when all of the window is painted.
class ChartCanvas : public QVTKOpenGLNativeWidget
{
public:
    using QVTKOpenGLNativeWidget::QVTKOpenGLNativeWidget;

protected:
    bool event(QEvent* event) override;

private:
    bool m_takesShape = false;
    bool m_isStale = false; ///< a painting was put off
};

} // namespace analyzer
