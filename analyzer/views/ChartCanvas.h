#pragma once

#include <QVTKOpenGLNativeWidget.h>

#include <vtkWeakPointer.h>

class vtkContextScene;
class vtkContextView;

namespace analyzer {

/// The widget that a chart is painted in.
///
/// Does not paint in the middle of taking another size or place, as QOpenGLWidget does at each step of a layout, but
/// once, after the window: which shows the last picture in the new size meanwhile, or the background if there is none.
/// So charts of very many points, each with its event, do not hold up the window together. grab() has a new picture.
class ChartCanvas : public QVTKOpenGLNativeWidget
{
public:
    using QVTKOpenGLNativeWidget::QVTKOpenGLNativeWidget;

    /// Paints the scene of \p view, which has the render window of this widget, when it is marked as dirty: with whatever
    /// else of the window has changed, so that the window is put together once. Not while the widget is hidden; what was
    /// marked meanwhile is painted when it is shown. To render the view's interactor is to mark the scene.
    void paintMarkedSceneOf(vtkContextView& view);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void paintGL() override;

private:
    void requestPainting();
    [[nodiscard]] bool needsPainting() const;

    /// Whether there is a picture in the size of the window.
    [[nodiscard]] bool hasPictureOfSize() const;
    void showLastPicture();

    vtkWeakPointer<vtkContextScene> m_scene; ///< null until there is one to follow
    bool m_isRequested = false;
    bool m_takesShape = false;
    bool m_isStale = false; ///< a painting was put off
    bool m_isWithWindow =
        false; ///< what is painted is for the window, and for nobody who waits for it
};

} // namespace analyzer
