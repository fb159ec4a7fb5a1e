#include <analyzer/views/ImageCanvas.h>
#include <analyzer/views/ImageCanvasZoomBar.h>

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QToolButton>

#include <algorithm>
#include <utility>

namespace analyzer {

namespace {

constexpr int spacingPx = 4;

QString percent(double scale)
{
    const double value = scale * 100.0;
    // A large picture in a small window: "0.4 %" says more than "0 %".
    constexpr double fewPercent = 1.0;
    return ImageCanvasZoomBar::tr("%1 %").arg(value, 0, 'f', value < fewPercent ? 1 : 0);
}

} // namespace

ImageCanvasZoomBar::ImageCanvasZoomBar(QWidget* parent)
    : QWidget(parent)
    , m_zoomOut(makeButton(tr("Zoom out"), tr("Zoom out (-, Ctrl and wheel)"), this))
    , m_zoomIn(makeButton(tr("Zoom in"), tr("Zoom in (+, Ctrl and wheel)"), this))
    , m_fit(makeButton(tr("Fit"), tr("Fit the image to the window (F)"), this))
    , m_actualSize(makeButton(
          tr("Actual size"),
          tr("Actual size: one pixel of the image is one of the screen (1)"),
          this))
    , m_zoom(new QLabel(this))
{
    m_zoomOut->setText(QString(QChar(0x2212)));
    m_zoomIn->setText(QStringLiteral("+"));
    m_fit->setText(tr("Fit"));
    m_fit->setCheckable(true);
    m_actualSize->setText(tr("1:1"));
    m_zoom->setAlignment(Qt::AlignCenter);
    // Buttons must not move while one of them is being pressed again and again.
    m_zoom->setMinimumWidth(fontMetrics().horizontalAdvance(percent(64.0)));

    connect(m_zoomOut, &QToolButton::clicked, this, [this] { zoomBySteps(-1); });
    connect(m_zoomIn, &QToolButton::clicked, this, [this] { zoomBySteps(1); });
    connect(m_fit, &QToolButton::clicked, this, [this] {
        const ImageCanvas* canvas = firstWithPicture();
        m_fit->setChecked(
            canvas != nullptr && canvas->isFitting()); // what is, not what is asked for
        Q_EMIT fitRequested();
    });
    connect(m_actualSize, &QToolButton::clicked, this, &ImageCanvasZoomBar::actualSizeRequested);

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacingPx);
    for (QWidget* widget :
         {static_cast<QWidget*>(m_zoomOut),
          static_cast<QWidget*>(m_zoom),
          static_cast<QWidget*>(m_zoomIn),
          static_cast<QWidget*>(m_fit),
          static_cast<QWidget*>(m_actualSize)}) {
        layout->addWidget(widget);
    }
}

QToolButton* ImageCanvasZoomBar::makeButton(
    const QString& name, const QString& toolTip, QWidget* parent)
{
    auto* button = new QToolButton(parent);
    button->setAccessibleName(name);
    button->setToolTip(toolTip);
    button->setAutoRaise(true);
    // The keys stay with the picture; every button has one.
    button->setFocusPolicy(Qt::NoFocus);
    return button;
}

void ImageCanvasZoomBar::setCanvases(std::vector<ImageCanvas*> canvases)
{
    for (ImageCanvas* canvas : m_canvases) {
        disconnect(canvas, nullptr, this, nullptr);
    }
    m_canvases = std::move(canvases);
    for (ImageCanvas* canvas : m_canvases) {
        connect(canvas, &ImageCanvas::zoomChanged, this, &ImageCanvasZoomBar::showZoom);
    }
    showZoom();
}

void ImageCanvasZoomBar::setFitting(bool isFitting)
{
    m_fit->setChecked(isFitting);
}

void ImageCanvasZoomBar::zoomBySteps(int steps)
{
    const auto under =
        std::find_if(m_canvases.begin(), m_canvases.end(), [](const ImageCanvas* canvas) {
            return canvas->underMouse() && canvas->hasPicture();
        });
    ImageCanvas* canvas = under == m_canvases.end() ? firstWithPicture() : *under;
    if (canvas != nullptr) {
        canvas->zoomBySteps(steps);
    }
}

bool ImageCanvasZoomBar::obeyKey(int key)
{
    switch (key) {
    case Qt::Key_Plus:
    case Qt::Key_Equal: // the same key without Shift on many keyboards
        zoomBySteps(1);
        return true;
    case Qt::Key_Minus:
        zoomBySteps(-1);
        return true;
    case Qt::Key_F:
        Q_EMIT fitRequested();
        return true;
    case Qt::Key_1:
        Q_EMIT actualSizeRequested();
        return true;
    default:
        return false;
    }
}

bool ImageCanvasZoomBar::isKeyOfBar(const QKeyEvent& event)
{
    constexpr Qt::KeyboardModifiers others =
        Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
    if ((event.modifiers() & others) != 0) {
        return false;
    }
    switch (event.key()) {
    case Qt::Key_Plus:
    case Qt::Key_Equal:
    case Qt::Key_Minus:
    case Qt::Key_F:
    case Qt::Key_1:
        return true;
    default:
        return false;
    }
}

ImageCanvas* ImageCanvasZoomBar::firstWithPicture() const
{
    const auto found =
        std::find_if(m_canvases.begin(), m_canvases.end(), [](const ImageCanvas* canvas) {
            return canvas->hasPicture();
        });
    return found == m_canvases.end() ? nullptr : *found;
}

void ImageCanvasZoomBar::showZoom()
{
    const ImageCanvas* canvas = firstWithPicture();
    const bool hasPicture = canvas != nullptr;
    m_zoom->setText(hasPicture ? percent(canvas->scale()) : QString());
    m_zoomIn->setEnabled(hasPicture);
    m_zoomOut->setEnabled(hasPicture);
    m_actualSize->setEnabled(hasPicture);
    m_fit->setEnabled(hasPicture);
}

} // namespace analyzer
