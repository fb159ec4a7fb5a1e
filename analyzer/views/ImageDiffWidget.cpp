#include <analyzer/views/ImageCanvas.h>
#include <analyzer/views/ImageCanvasCaption.h>
#include <analyzer/views/ImageCanvasZoomBar.h>
#include <analyzer/views/ImageDiffWidget.h>
#include <analyzer/views/SelectedImageGrid.h>

#include <QComboBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QSignalBlocker>
#include <QSlider>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

namespace analyzer {

namespace {

constexpr int barMarginPx = 3;
constexpr int barSpacingPx = 4;
constexpr int textIndentPx = 3;
constexpr int onlySecond = 100; ///< percent
constexpr int blendStep = 5; ///< percent
constexpr int largestGain = 16;
constexpr int shortestSliderPx = 60;
constexpr int longestSliderPx = 320;

QSlider* makeSlider(const QString& name, int minimum, int maximum, int step, QWidget* parent)
{
    auto* slider = new QSlider(Qt::Horizontal, parent);
    slider->setAccessibleName(name);
    slider->setRange(minimum, maximum);
    slider->setSingleStep(step);
    slider->setPageStep(2 * step);
    slider->setMinimumWidth(shortestSliderPx);
    slider->setMaximumWidth(longestSliderPx);
    return slider;
}

} // namespace

ImageDiffWidget::ImageDiffWidget(QWidget* parent)
    : ImageLeafingWidget(parent)
    , m_grid(new SelectedImageGrid(this))
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(makeBar());
    layout->addWidget(m_grid, 1);
    connect(m_grid, &SelectedImageGrid::cellAdded, this, [this] {
        zoomBar().setCanvases(m_grid->canvases());
    });
    m_grid->setCells(2, 2);
    setMode(ImageDiffMode::SideBySide);
    setNothing({});
    setFocusProxy(&canvas(0));
}

QWidget* ImageDiffWidget::makeBar()
{
    m_previous = ImageCanvasZoomBar::makeButton(
        tr("Previous case"), tr("Compare with the previous case (Left, Page Up)"), this);
    m_previous->setArrowType(Qt::LeftArrow);
    m_next = ImageCanvasZoomBar::makeButton(
        tr("Next case"), tr("Compare with the next case (Right, Page Down)"), this);
    m_next->setArrowType(Qt::RightArrow);
    m_pin = ImageCanvasZoomBar::makeButton(tr("Pin the reference"), {}, this);
    m_pin->setText(tr("Pin"));
    m_pin->setCheckable(true);
    m_swap =
        ImageCanvasZoomBar::makeButton(tr("Swap"), tr("Let the two images change places"), this);
    m_swap->setText(tr("Swap"));
    m_swap->setCheckable(true);
    makeZoomBar();
    m_place = new QLabel(this);
    m_place->setIndent(textIndentPx);
    m_pair = new ImageCanvasCaption(this);
    m_remark = new QLabel(this);
    m_remark->setTextFormat(Qt::PlainText);
    m_remark->setIndent(textIndentPx);
    m_remark->setWordWrap(true); // its numbers are worth a second line
    m_remark->setTextInteractionFlags(Qt::TextSelectableByMouse);

    connect(m_previous, &QToolButton::clicked, this, &ImageDiffWidget::previousRequested);
    connect(m_next, &QToolButton::clicked, this, &ImageDiffWidget::nextRequested);
    // Both show what is, not what is asked for.
    connect(m_pin, &QToolButton::clicked, this, [this](bool checked) {
        m_pin->setChecked(!checked);
        Q_EMIT pinRequested(checked);
    });
    connect(m_swap, &QToolButton::clicked, this, [this](bool checked) {
        m_swap->setChecked(!checked);
        Q_EMIT swapRequested(checked);
    });

    auto* bar = new QWidget(this);
    auto* lines = new QVBoxLayout(bar);
    lines->setContentsMargins(barMarginPx, barMarginPx, barMarginPx, barMarginPx);
    lines->setSpacing(barSpacingPx);
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(barSpacingPx);
    buttons->addWidget(m_previous);
    buttons->addWidget(m_next);
    buttons->addWidget(m_place);
    buttons->addStretch(1);
    buttons->addWidget(&zoomBar());
    lines->addLayout(buttons);
    lines->addWidget(makeModeLine());
    lines->addWidget(m_pair);
    lines->addWidget(m_remark);
    return bar;
}

QWidget* ImageDiffWidget::makeModeLine()
{
    auto* line = new QWidget(this);
    m_mode = new QComboBox(line);
    m_mode->setAccessibleName(tr("Way of comparing"));
    m_mode->addItem(tr("Side by side"));
    m_mode->addItem(tr("Blend"));
    m_mode->addItem(tr("Difference"));
    m_blend = makeSlider(tr("Blend"), 0, onlySecond, blendStep, line);
    m_blend->setToolTip(tr("From the first image at the left end to the second one at the right"));
    m_gain = makeSlider(tr("Gain"), 1, largestGain, 1, line);
    m_gain->setToolTip(
        tr("How many times brighter differences are drawn, so that small ones show"));
    m_amount = new QLabel(line);
    // The slider must not change its length while it is being moved.
    m_amount->setMinimumWidth(fontMetrics().horizontalAdvance(tr("%1 %").arg(onlySecond)));

    connect(m_mode, QOverload<int>::of(&QComboBox::activated), this, [this](int index) {
        Q_EMIT modeRequested(static_cast<ImageDiffMode>(index));
    });
    connect(m_blend, &QSlider::valueChanged, this, &ImageDiffWidget::blendRequested);
    connect(m_gain, &QSlider::valueChanged, this, &ImageDiffWidget::gainRequested);

    auto* layout = new QHBoxLayout(line);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(barSpacingPx);
    layout->addWidget(m_mode);
    layout->addWidget(m_blend, 3);
    layout->addWidget(m_gain, 3);
    layout->addWidget(m_amount);
    layout->addStretch(1);
    layout->addWidget(m_pin);
    layout->addWidget(m_swap);
    return line;
}

void ImageDiffWidget::setMode(ImageDiffMode mode)
{
    const bool isSideBySide = mode == ImageDiffMode::SideBySide;
    m_mode->setCurrentIndex(static_cast<int>(mode));
    m_blend->setVisible(mode == ImageDiffMode::Blend);
    m_gain->setVisible(mode == ImageDiffMode::Difference);
    m_amount->setVisible(!isSideBySide);
    m_amount->setText(
        mode == ImageDiffMode::Blend ? tr("%1 %").arg(m_blend->value())
                                     : tr("× %1").arg(m_gain->value()));
    m_pair->setVisible(!isSideBySide); // each has a caption of its own there
    const std::size_t cells = isSideBySide ? 2 : 1;
    m_grid->setCells(cells, cells);
}

void ImageDiffWidget::setBlend(int percent)
{
    const QSignalBlocker blocker(m_blend);
    m_blend->setValue(percent);
    m_amount->setText(tr("%1 %").arg(percent));
}

void ImageDiffWidget::setGain(int gain)
{
    const QSignalBlocker blocker(m_gain);
    m_gain->setValue(gain);
    m_amount->setText(tr("× %1").arg(gain));
}

void ImageDiffWidget::setFitting(bool isFitting)
{
    zoomBar().setFitting(isFitting);
}

void ImageDiffWidget::setSwapped(bool isSwapped)
{
    m_swap->setChecked(isSwapped);
}

void ImageDiffWidget::setPinned(bool isPinned, bool canPin, const QString& toolTip)
{
    m_pin->setChecked(isPinned);
    m_pin->setEnabled(isPinned || canPin);
    m_pin->setToolTip(toolTip);
}

void ImageDiffWidget::setPlace(std::size_t place, std::size_t count)
{
    m_place->setText(count > 1 ? tr("%1 of %2").arg(place + 1).arg(count) : QString());
    m_previous->setEnabled(place > 0);
    m_next->setEnabled(place + 1 < count);
}

void ImageDiffWidget::setCaptions(
    const std::array<QString, 2>& captions, const std::array<QString, 2>& paths)
{
    for (std::size_t i = 0; i < captions.size(); ++i) {
        caption(i).setText(captions[i]);
        caption(i).setToolTip(paths[i].toHtmlEscaped());
        canvas(i).setAccessibleName(captions[i]);
    }
    m_pair->setText(tr("%1 and %2").arg(captions[0], captions[1]));
    m_pair->setToolTip(
        QStringLiteral("%1<br>%2").arg(paths[0].toHtmlEscaped(), paths[1].toHtmlEscaped()));
}

void ImageDiffWidget::setRemark(const QString& remark)
{
    m_remark->setText(remark);
    m_remark->setVisible(!remark.isEmpty());
}

void ImageDiffWidget::setNothing(const QString& message)
{
    setPlace(0, 0);
    m_pair->clear();
    m_pair->setToolTip({});
    setRemark({});
    m_grid->setCells(1, 1);
    canvas(0).setMessage(message);
}

ImageCanvas& ImageDiffWidget::canvas(std::size_t number) const
{
    return m_grid->canvas(number);
}

ImageCanvasCaption& ImageDiffWidget::caption(std::size_t number) const
{
    return m_grid->caption(number);
}

QString ImageDiffWidget::placeText() const
{
    return m_place->text();
}

QString ImageDiffWidget::pairText() const
{
    return m_pair->text();
}

QString ImageDiffWidget::remark() const
{
    return m_remark->text();
}

} // namespace analyzer
