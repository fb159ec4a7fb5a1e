#pragma once

#include <QVTKOpenGLNativeWidget.h>

#include <vtkWeakPointer.h>

class vtkContextScene;
class vtkContextView;

namespace analyzer {

/// The widget that a chart is painted in.
///
/// Does not paint in the middle of taking another size or place, as QOpenGLWidget does at each step of a layout, but
/// once, when all of the window is painted.
class ChartCanvas : public QVTKOpenGLNativeWidget
{
public:
    using QVTKOpenGLNativeWidget::QVTKOpenGLNativeWidget;

    /// Paints the scene of \p view, which has the render window of this widget, when it is marked as dirty: with whatever
    /// else of the window has changed, so that the window is put together once. Not while the widget is hidden; what was
    /// marked meanwhile is painted when it is shown.
    void paintMarkedSceneOf(vtkContextView& view);

protected:
    bool event(QEvent* event) override;

private:
    void requestPainting();
    [[nodiscard]] bool needsPainting() const;

    vtkWeakPointer<vtkContextScene> m_scene; ///< null until there is one to follow
    bool m_isRequested = false;
    bool m_takesShape = false;
    bool m_isStale = false; ///< a painting was put off
};

} // namespace analyzer
