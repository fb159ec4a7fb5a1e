#include <analyzer/views/ChartCanvas.h>

#include <QCoreApplication>
#include <QEvent>
#include <QPointer>
#include <QScopedValueRollback>

#include <vtkContextInteractorStyle.h>
#include <vtkContextScene.h>
#include <vtkContextView.h>
#include <vtkNew.h>
#include <vtkObjectFactory.h>
#include <vtkRenderWindow.h>
#include <vtkRenderWindowInteractor.h>

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
    view.GetInteractor()->SetInteractorStyle(style);
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
    return m_scene != nullptr && m_scene->GetDirty() && isVisible();
}

} // namespace analyzer
