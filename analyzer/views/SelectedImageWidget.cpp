#include <analyzer/views/CaseValuesTable.h>
#include <analyzer/views/ImageCanvas.h>
#include <analyzer/views/ImageCanvasCaption.h>
#include <analyzer/views/ImageCanvasZoomBar.h>
#include <analyzer/views/SelectedImageGrid.h>
#include <analyzer/views/SelectedImageWidget.h>

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QResizeEvent>
#include <QSplitter>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>
#include <utility>

namespace analyzer {

namespace {

constexpr int barMarginPx = 3;
constexpr int barSpacingPx = 4;
constexpr int narrowPx = 480; ///< below this width the values are below the picture
constexpr int textIndentPx = 3;

} // namespace

SelectedImageWidget::SelectedImageWidget(QWidget* parent)
    : ImageLeafingWidget(parent)
    , m_grid(new SelectedImageGrid(this))
    , m_values(new CaseValuesTable(this))
    , m_splitter(new QSplitter(this))
{
    m_splitter->addWidget(m_grid);
    m_splitter->addWidget(m_values);
    m_splitter->setStretchFactor(0, 1); // room that is left is the picture's
    m_splitter->setStretchFactor(1, 0);
    m_splitter->setCollapsible(0, false);
    connect(m_splitter, &QSplitter::splitterMoved, this, &SelectedImageWidget::noteShare);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(makeBar());
    layout->addWidget(m_splitter, 1);

    connect(m_grid, &SelectedImageGrid::cellAdded, this, [this] {
        zoomBar().setCanvases(m_grid->canvases());
    });
    setNothing({});
    setFocusProxy(&m_grid->canvas(0));
}

QWidget* SelectedImageWidget::makeBar()
{
    m_previous = ImageCanvasZoomBar::makeButton(
        tr("Previous image"), tr("Previous image (Left, Page Up)"), this);
    m_previous->setArrowType(Qt::LeftArrow);
    m_next =
        ImageCanvasZoomBar::makeButton(tr("Next image"), tr("Next image (Right, Page Down)"), this);
    m_next->setArrowType(Qt::RightArrow);
    makeZoomBar();
    m_place = new QLabel(this);
    m_place->setIndent(textIndentPx);
    m_file = new ImageCanvasCaption(this);

    connect(m_previous, &QToolButton::clicked, this, &SelectedImageWidget::previousRequested);
    connect(m_next, &QToolButton::clicked, this, &SelectedImageWidget::nextRequested);

    auto* bar = new QWidget(this);
    auto* lines = new QVBoxLayout(bar);
    lines->setContentsMargins(barMarginPx, barMarginPx, barMarginPx, barMarginPx);
    lines->setSpacing(barSpacingPx);
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(barSpacingPx);
    buttons->addWidget(m_previous);
    buttons->addWidget(m_next);
    buttons->addStretch(1);
    buttons->addWidget(&zoomBar());
    lines->addLayout(buttons);
    auto* texts = new QHBoxLayout;
    texts->setSpacing(barSpacingPx);
    texts->addWidget(m_place);
    texts->addWidget(m_file, 1);
    lines->addLayout(texts);
    return bar;
}

void SelectedImageWidget::setPlaces(
    std::size_t first, std::size_t shown, std::size_t count, std::size_t cells)
{
    m_place->setText(
        shown == 1 ? tr("%1 of %2").arg(first + 1).arg(count)
                   : tr("%1 to %2 of %3").arg(first + 1).arg(first + shown).arg(count));
    m_previous->setEnabled(first > 0);
    m_next->setEnabled(first + shown < count);
    m_grid->setCells(cells, shown);
    m_values->show();
    const bool hasSeveral = cells > 1;
    if (std::exchange(m_hasSeveral, hasSeveral) != hasSeveral) {
        shareRoom();
    }
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
    m_grid->setCells(1, 1);
    canvas().setMessage(message);
}

void SelectedImageWidget::setFitting(bool isFitting)
{
    zoomBar().setFitting(isFitting);
}

ImageCanvas& SelectedImageWidget::canvas() const
{
    return m_grid->canvas(0);
}

QString SelectedImageWidget::placeText() const
{
    return m_place->text();
}

QString SelectedImageWidget::fileText() const
{
    return m_file->text();
}

void SelectedImageWidget::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    const Qt::Orientation orientation = width() < narrowPx ? Qt::Vertical : Qt::Horizontal;
    const bool isOther = m_splitter->orientation() != orientation;
    m_splitter->setOrientation(orientation);
    // What was a width is no height. Beside one picture the values keep what they have.
    if (isOther || m_valuesShare || m_hasSeveral) {
        shareRoom();
    }
}

void SelectedImageWidget::setValuesShare(std::optional<double> share)
{
    m_valuesShare = share;
    shareRoom();
}

void SelectedImageWidget::noteShare()
{
    const QList<int> sizes = m_splitter->sizes();
    const int room = sizes[0] + sizes[1];
    if (room > 0) {
        m_valuesShare = static_cast<double>(sizes[1]) / room;
    }
}

void SelectedImageWidget::shareRoom()
{
    const bool isVertical = m_splitter->orientation() == Qt::Vertical;
    const int room = std::max(
        (isVertical ? m_splitter->height() : m_splitter->width()) - m_splitter->handleWidth(), 0);
    const int forValues = std::min(roomForValues(room), room);
    m_splitter->setSizes({room - forValues, forValues});
}

int SelectedImageWidget::roomForValues(int room) const
{
    if (m_valuesShare) {
        return static_cast<int>(std::lround(room * *m_valuesShare));
    }
    constexpr int third = 3;
    if (m_splitter->orientation() == Qt::Vertical) {
        return room / third;
    }
    const int wanted = m_values->sizeHint().width();
    return m_hasSeveral ? std::min(wanted, room / third) : wanted;
}

} // namespace analyzer
