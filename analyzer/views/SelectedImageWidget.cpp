#include <analyzer/views/CaseValuesTable.h>
#include <analyzer/views/ImageCanvas.h>
#include <analyzer/views/SelectedImageWidget.h>

#include <QFontMetrics>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QResizeEvent>
#include <QSplitter>
#include <QStyle>
#include <QToolButton>
#include <QVBoxLayout>

namespace analyzer {

namespace {

constexpr int barMarginPx = 3;
constexpr int barSpacingPx = 4;
constexpr int narrowPx = 480; ///< below this width the values are below the picture
constexpr int textIndentPx = 3;

/// A line of text that is cut in the middle rather than making its window wider.
class ElidedLabel : public QLabel
{
public:
    explicit ElidedLabel(QWidget* parent)
        : QLabel(parent)
    {
        setTextFormat(Qt::PlainText);
        setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override
    {
        QPainter painter(this);
        const QString shown =
            fontMetrics().elidedText(text(), Qt::ElideMiddle, width() - 2 * textIndentPx);
        style()->drawItemText(
            &painter,
            rect().adjusted(textIndentPx, 0, -textIndentPx, 0),
            Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
            palette(),
            isEnabled(),
            shown,
            foregroundRole());
    }
};

QString percent(double scale)
{
    const double value = scale * 100.0;
    // A large picture in a small window: "0.4 %" says more than "0 %".
    constexpr double fewPercent = 1.0;
    return SelectedImageWidget::tr("%1 %").arg(value, 0, 'f', value < fewPercent ? 1 : 0);
}

} // namespace

SelectedImageWidget::SelectedImageWidget(QWidget* parent)
    : QWidget(parent)
    , m_canvas(new ImageCanvas(this))
    , m_values(new CaseValuesTable(this))
    , m_splitter(new QSplitter(this))
{
    m_splitter->addWidget(m_canvas);
    m_splitter->addWidget(m_values);
    m_splitter->setStretchFactor(0, 1); // room that is left is the picture's
    m_splitter->setStretchFactor(1, 0);
    m_splitter->setCollapsible(0, false);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(makeBar());
    layout->addWidget(m_splitter, 1);
    setFocusProxy(m_canvas);

    connect(m_canvas, &ImageCanvas::zoomChanged, this, &SelectedImageWidget::showZoom);
    setNothing({});
}

QWidget* SelectedImageWidget::makeBar()
{
    m_previous = makeButton(tr("Previous image"), tr("Previous image (Left, Page Up)"));
    m_previous->setArrowType(Qt::LeftArrow);
    m_next = makeButton(tr("Next image"), tr("Next image (Right, Page Down)"));
    m_next->setArrowType(Qt::RightArrow);
    m_zoomOut = makeButton(tr("Zoom out"), tr("Zoom out (-, Ctrl and wheel)"));
    m_zoomOut->setText(QString(QChar(0x2212)));
    m_zoomIn = makeButton(tr("Zoom in"), tr("Zoom in (+, Ctrl and wheel)"));
    m_zoomIn->setText(QStringLiteral("+"));
    m_fit = makeButton(tr("Fit"), tr("Fit the image to the window (F)"));
    m_fit->setText(tr("Fit"));
    m_fit->setCheckable(true);
    m_actualSize = makeButton(
        tr("Actual size"), tr("Actual size: one pixel of the image is one of the screen (1)"));
    m_actualSize->setText(tr("1:1"));

    m_place = new QLabel(this);
    m_place->setIndent(textIndentPx);
    m_zoom = new QLabel(this);
    m_zoom->setAlignment(Qt::AlignCenter);
    // Buttons must not move while one of them is being pressed again and again.
    m_zoom->setMinimumWidth(fontMetrics().horizontalAdvance(percent(64.0)));
    m_file = new ElidedLabel(this);

    connect(m_previous, &QToolButton::clicked, this, &SelectedImageWidget::previousRequested);
    connect(m_next, &QToolButton::clicked, this, &SelectedImageWidget::nextRequested);
    connect(m_zoomOut, &QToolButton::clicked, this, [this] { m_canvas->zoomBySteps(-1); });
    connect(m_zoomIn, &QToolButton::clicked, this, [this] { m_canvas->zoomBySteps(1); });
    connect(m_fit, &QToolButton::clicked, this, [this] {
        m_fit->setChecked(m_canvas->isFitting()); // it shows what is, not what is asked for
        Q_EMIT fitRequested();
    });
    connect(m_actualSize, &QToolButton::clicked, this, &SelectedImageWidget::actualSizeRequested);

    auto* bar = new QWidget(this);
    auto* lines = new QVBoxLayout(bar);
    lines->setContentsMargins(barMarginPx, barMarginPx, barMarginPx, barMarginPx);
    lines->setSpacing(barSpacingPx);
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(barSpacingPx);
    buttons->addWidget(m_previous);
    buttons->addWidget(m_next);
    buttons->addStretch(1);
    for (QWidget* widget :
         {static_cast<QWidget*>(m_zoomOut),
          static_cast<QWidget*>(m_zoom),
          static_cast<QWidget*>(m_zoomIn),
          static_cast<QWidget*>(m_fit),
          static_cast<QWidget*>(m_actualSize)}) {
        buttons->addWidget(widget);
    }
    lines->addLayout(buttons);
    auto* texts = new QHBoxLayout;
    texts->setSpacing(barSpacingPx);
    texts->addWidget(m_place);
    texts->addWidget(m_file, 1);
    lines->addLayout(texts);
    return bar;
}

QToolButton* SelectedImageWidget::makeButton(const QString& name, const QString& toolTip)
{
    auto* button = new QToolButton(this);
    button->setAccessibleName(name);
    button->setToolTip(toolTip);
    button->setAutoRaise(true);
    // The keys stay with the picture; every button has one.
    button->setFocusPolicy(Qt::NoFocus);
    return button;
}

void SelectedImageWidget::setPlace(std::size_t place, std::size_t count)
{
    m_place->setText(tr("%1 of %2").arg(place + 1).arg(count));
    m_previous->setEnabled(place > 0);
    m_next->setEnabled(place + 1 < count);
    m_values->show();
}

void SelectedImageWidget::setFile(const QString& name, const QString& tags, const QString& path)
{
    m_file->setText(tags.isEmpty() ? name : tr("%1 (%2)").arg(name, tags));
    m_file->setToolTip(path.toHtmlEscaped());
}

void SelectedImageWidget::setNothing(const QString& message)
{
    m_place->clear();
    m_previous->setEnabled(false);
    m_next->setEnabled(false);
    m_file->clear();
    m_file->setToolTip({});
    m_values->clearCase();
    m_values->hide();
    m_canvas->setMessage(message);
}

void SelectedImageWidget::setFitting(bool isFitting)
{
    m_fit->setChecked(isFitting);
}

QString SelectedImageWidget::placeText() const
{
    return m_place->text();
}

QString SelectedImageWidget::fileText() const
{
    return m_file->text();
}

bool SelectedImageWidget::event(QEvent* event)
{
    // Keys without modifiers may be somebody's shortcuts; here they are for the picture.
    if (event->type() == QEvent::ShortcutOverride && m_canvas->hasFocus()) {
        switch (static_cast<QKeyEvent*>(event)->key()) {
        case Qt::Key_Plus:
        case Qt::Key_Equal:
        case Qt::Key_Minus:
        case Qt::Key_F:
        case Qt::Key_1:
            if ((static_cast<QKeyEvent*>(event)->modifiers()
                 & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier))
                == 0) {
                event->accept();
                return true;
            }
            break;
        default:
            break;
        }
    }
    return QWidget::event(event);
}

void SelectedImageWidget::keyPressEvent(QKeyEvent* event)
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

bool SelectedImageWidget::obeyKey(int key)
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
    case Qt::Key_Plus:
    case Qt::Key_Equal: // the same key without Shift on many keyboards
        m_canvas->zoomBySteps(1);
        return true;
    case Qt::Key_Minus:
        m_canvas->zoomBySteps(-1);
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

void SelectedImageWidget::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    const Qt::Orientation orientation = width() < narrowPx ? Qt::Vertical : Qt::Horizontal;
    if (m_splitter->orientation() == orientation) {
        return;
    }
    m_splitter->setOrientation(orientation);
    // What was a width is no height.
    const bool isVertical = orientation == Qt::Vertical;
    const int room = isVertical ? height() : width();
    const int forValues = isVertical ? room / 3 : m_values->sizeHint().width();
    m_splitter->setSizes({room - forValues, forValues});
}

void SelectedImageWidget::showZoom()
{
    const bool hasPicture = m_canvas->hasPicture();
    m_zoom->setText(hasPicture ? percent(m_canvas->scale()) : QString());
    m_zoomIn->setEnabled(hasPicture);
    m_zoomOut->setEnabled(hasPicture);
    m_actualSize->setEnabled(hasPicture);
    m_fit->setEnabled(hasPicture);
}

} // namespace analyzer
