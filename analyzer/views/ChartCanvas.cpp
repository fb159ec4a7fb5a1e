#include <analyzer/views/ChartCanvas.h>

#include <QEvent>
#include <QScopedValueRollback>

namespace analyzer {

bool ChartCanvas::event(QEvent* event)
{
    const QEvent::Type type = event->type();
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
    return isHandled;
}

} // namespace analyzer
