#include <analyzer/views/ChartCanvas.h>

#include <dataviews/platform/vtk/vtkCvCommandProxy.h>

#include <QCoreApplication>
#include <QEvent>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QPointer>
#include <QScopedValueRollback>
#include <QVTKInteractor.h>
#include <QVTKRenderWindowAdapter.h>

#include <vtkCommand.h>
#include <vtkContextInteractorStyle.h>
#include <vtkContextScene.h>
#include <vtkContextView.h>
#include <vtkGenericOpenGLRenderWindow.h>
#include <vtkNew.h>
#include <vtkObjectFactory.h>
#include <vtkOpenGLFramebufferObject.h>
#include <vtkOpenGLState.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkRenderer.h>
#include <vtkRendererCollection.h>

#include <array>
#include <functional>
#include <utility>

namespace analyzer {

namespace {

const auto paintingRequest = static_cast<QEvent::Type>(QEvent::registerEventType());

/// Tells at once that the scene is to be painted. VTK's own starts a timer of 40 ms, and so at most 25 pictures a second.
class PromptStyle : public vtkContextInteractorStyle
{
public:
    static PromptStyle* New();

    vtkTypeMacro(PromptStyle, vtkContextInteractorStyle)

        void OnSceneModified() override
    {
        // At the end of each event that it handles, the base class calls this again.
        if (Scene != nullptr && Scene->GetDirty() && ProcessingEvents == 0 && m_marked) {
            m_marked();
        }
    }

    void setMarked(std::function<void()> marked) { m_marked = std::move(marked); }

private:
    std::function<void()> m_marked;
};

vtkStandardNewMacro(PromptStyle)

} // namespace

void ChartCanvas::paintMarkedSceneOf(vtkContextView& view)
{
    m_scene = view.GetScene();
    const vtkNew<PromptStyle> style;
    style->SetScene(view.GetScene());
    style->setMarked([canvas = QPointer<ChartCanvas>(this)] {
        if (canvas) {
            canvas->requestPainting();
        }
    });
    vtkRenderWindowInteractor& interactor = *view.GetInteractor();
    interactor.SetInteractorStyle(style);
    // VTK's widgets, such as the one of a color bar, ask the interactor for a picture at every change.
    interactor.EnableRenderOff();
    interactor.AddObserver(
        vtkCommand::RenderEvent, vtkCvCommandProxy::New([canvas = QPointer<ChartCanvas>(this)] {
            if (canvas && canvas->m_scene != nullptr && !canvas->interactor()->GetEnableRender()) {
                canvas->m_scene->SetDirty(true);
            }
        }));
}

bool ChartCanvas::event(QEvent* event)
{
    const QEvent::Type type = event->type();
    if (type == paintingRequest) {
        m_isRequested = false;
        if (needsPainting()) {
            renderWindow()->Render(); // and this marks the widget
        }
        return true;
    }
    if (type == QEvent::Paint && m_takesShape) {
        m_isStale = true;
        return true;
    }
    if (type != QEvent::Resize && type != QEvent::Show && type != QEvent::WindowChangeInternal) {
        return QVTKOpenGLNativeWidget::event(event);
    }
    bool isHandled = false;
    {
        const QScopedValueRollback<bool> takesShape(m_takesShape, true);
        isHandled = QVTKOpenGLNativeWidget::event(event);
    }
    if (m_isStale) {
        m_isStale = false;
        update();
    }
    requestPainting();
    return isHandled;
}

void ChartCanvas::paintEvent(QPaintEvent* event)
{
    const QScopedValueRollback<bool> withWindow(m_isWithWindow, true);
    QVTKOpenGLNativeWidget::paintEvent(event);
}

void ChartCanvas::paintGL()
{
    if (m_isWithWindow && !hasPictureOfSize()) {
        showLastPicture();
        requestPainting();
        return;
    }
    interactor()->EnableRenderOn();
    QVTKOpenGLNativeWidget::paintGL();
    interactor()->SetEnableRender(m_scene == nullptr);
}

void ChartCanvas::requestPainting()
{
    if (m_isRequested || !needsPainting()) {
        return;
    }
    m_isRequested = true;
    // Behind everything that may mark charts, and before the window is painted.
    QCoreApplication::postEvent(this, new QEvent(paintingRequest), Qt::LowEventPriority + 1);
}

bool ChartCanvas::needsPainting() const
{
    const bool isMarked = m_scene != nullptr && m_scene->GetDirty();
    return isVisible() && (isMarked || (isValid() && !hasPictureOfSize()));
}

bool ChartCanvas::hasPictureOfSize() const
{
    const int* const picture = RenderWindow->GetRenderFramebuffer()->GetLastSize();
    const int* const window = RenderWindow->GetSize();
    return picture[0] == window[0] && picture[1] == window[1];
}

void ChartCanvas::showLastPicture()
{
    vtkOpenGLState& state = *RenderWindow->GetState();
    state.Reset();
    state.Push();
    if (RenderWindow->GetRenderFramebuffer()->GetFBOIndex() != 0) {
        const QSize pixels = size() * devicePixelRatioF();
        RenderWindowAdapter->blit(
            defaultFramebufferObject(), GL_COLOR_ATTACHMENT0, QRect(QPoint(0, 0), pixels));
    } else {
        std::array<double, 3> background = {};
        if (vtkRenderer* const first = RenderWindow->GetRenderers()->GetFirstRenderer()) {
            first->GetBackground(background.data());
        }
        QOpenGLFunctions& gl = *context()->functions();
        gl.glClearColor(
            static_cast<float>(background[0]),
            static_cast<float>(background[1]),
            static_cast<float>(background[2]),
            1.0F);
        gl.glClear(GL_COLOR_BUFFER_BIT);
    }
    state.Pop();
}

} // namespace analyzer
