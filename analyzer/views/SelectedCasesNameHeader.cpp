#include <analyzer/views/SelectedCasesModel.h>
#include <analyzer/views/SelectedCasesNameHeader.h>

#include <QFontMetrics>
#include <QMouseEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionHeader>

#include <algorithm>

namespace analyzer {

namespace {

constexpr int edgePx = 4; ///< how near to the edge the mouse must be
constexpr int marginPx = 6;
constexpr int roundingPx = 2; ///< widths of texts are no whole numbers
constexpr int maxFittingWidthPx = 260;

} // namespace

SelectedCasesNameHeader::SelectedCasesNameHeader(QWidget* parent)
    : QHeaderView(Qt::Vertical, parent)
{
    setSectionResizeMode(QHeaderView::Fixed);
    setHighlightSections(false);
    setSectionsClickable(true);
    setMinimumSectionSize(1);
    setMouseTracking(true);
    viewport()->setMouseTracking(true);
}

int SelectedCasesNameHeader::fittingWidth() const
{
    QFont bold = font();
    bold.setBold(true);
    const QFontMetrics metrics(bold);
    int width = minWidthPx;
    for (int row = 0; row < count() && width < maxFittingWidthPx; ++row) {
        const QString name = model()->headerData(row, Qt::Vertical).toString();
        width = std::max(width, metrics.horizontalAdvance(name) + 2 * marginPx + roundingPx);
    }
    return std::min(width, maxFittingWidthPx);
}

void SelectedCasesNameHeader::paintSection(
    QPainter* painter, const QRect& rect, int logicalIndex) const
{
    const auto headerData = [this, logicalIndex](int role) {
        return model()->headerData(logicalIndex, Qt::Vertical, role);
    };
    // The base class would cut bold names as if they were not.
    QStyleOptionHeader option;
    initStyleOption(&option);
    option.rect = rect;
    option.section = logicalIndex;
    option.orientation = Qt::Vertical;
    const bool isHeading = headerData(SelectedCasesModel::HeadingRole).toBool();
    if (!isHeading) {
        style()->drawControl(QStyle::CE_HeaderSection, &option, painter, this);
    } else {
        painter->fillRect(rect, palette().brush(QPalette::AlternateBase));
    }
    painter->save();
    QFont textFont = font();
    textFont.setBold(headerData(Qt::FontRole).value<QFont>().bold());
    textFont.setItalic(isHeading);
    painter->setFont(textFont);
    painter->setPen(palette().color(isHeading ? QPalette::Text : QPalette::ButtonText));
    const QRect place = rect.adjusted(marginPx, 0, -marginPx, 0);
    painter->drawText(
        place,
        Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
        QFontMetrics(textFont).elidedText(
            headerData(Qt::DisplayRole).toString(), Qt::ElideMiddle, place.width()));
    painter->restore();
}

bool SelectedCasesNameHeader::isAtEdge(const QPoint& place) const
{
    return place.x() >= viewport()->width() - edgePx;
}

void SelectedCasesNameHeader::mousePressEvent(QMouseEvent* event)
{
    m_isDragging = event->button() == Qt::LeftButton && isAtEdge(event->pos());
    if (!m_isDragging) {
        QHeaderView::mousePressEvent(event);
        return;
    }
    m_grip = viewport()->width() - event->pos().x();
    event->accept();
}

void SelectedCasesNameHeader::mouseMoveEvent(QMouseEvent* event)
{
    if (m_isDragging) {
        Q_EMIT widthDragged(std::max(event->pos().x() + m_grip, minWidthPx));
        event->accept();
        return;
    }
    if (event->buttons() == Qt::NoButton) {
        if (isAtEdge(event->pos())) {
            viewport()->setCursor(Qt::SplitHCursor);
        } else {
            viewport()->unsetCursor();
        }
    }
    QHeaderView::mouseMoveEvent(event);
}

void SelectedCasesNameHeader::mouseReleaseEvent(QMouseEvent* event)
{
    if (!m_isDragging) {
        QHeaderView::mouseReleaseEvent(event);
        return;
    }
    m_isDragging = false;
    event->accept();
}

void SelectedCasesNameHeader::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && isAtEdge(event->pos())) {
        event->accept();
        Q_EMIT edgeDoubleClicked();
        return;
    }
    QHeaderView::mouseDoubleClickEvent(event);
}

} // namespace analyzer
