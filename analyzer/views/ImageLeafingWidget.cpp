#include <analyzer/views/ImageCanvas.h>
#include <analyzer/views/ImageCanvasZoomBar.h>
#include <analyzer/views/ImageLeafingWidget.h>

#include <QKeyEvent>

namespace analyzer {

ImageLeafingWidget::~ImageLeafingWidget() = default;

void ImageLeafingWidget::makeZoomBar()
{
    m_zoomBar = new ImageCanvasZoomBar(this);
    connect(m_zoomBar, &ImageCanvasZoomBar::fitRequested, this, &ImageLeafingWidget::fitRequested);
    connect(
        m_zoomBar,
        &ImageCanvasZoomBar::actualSizeRequested,
        this,
        &ImageLeafingWidget::actualSizeRequested);
}

bool ImageLeafingWidget::event(QEvent* event)
{
    // Keys without modifiers may be somebody's shortcuts; here they are for the picture.
    if (event->type() == QEvent::ShortcutOverride
        && dynamic_cast<ImageCanvas*>(focusWidget()) != nullptr
        && ImageCanvasZoomBar::isKeyOfBar(*static_cast<QKeyEvent*>(event))) {
        event->accept();
        return true;
    }
    return QWidget::event(event);
}

void ImageLeafingWidget::keyPressEvent(QKeyEvent* event)
{
    constexpr Qt::KeyboardModifiers others =
        Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
    const bool isPlain = (event->modifiers() & others) == 0;
    if (isPlain && obeyKey(event->key())) {
        event->accept();
        return;
    }
    QWidget::keyPressEvent(event);
}

bool ImageLeafingWidget::obeyKey(int key)
{
    switch (key) {
    case Qt::Key_Left:
    case Qt::Key_PageUp:
        Q_EMIT previousRequested();
        return true;
    case Qt::Key_Right:
    case Qt::Key_PageDown:
        Q_EMIT nextRequested();
        return true;
    case Qt::Key_Home:
        Q_EMIT firstRequested();
        return true;
    case Qt::Key_End:
        Q_EMIT lastRequested();
        return true;
    default:
        return m_zoomBar->obeyKey(key);
    }
}

} // namespace analyzer
