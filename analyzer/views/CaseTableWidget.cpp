#include <analyzer/views/CaseTableDelegate.h>
#include <analyzer/views/CaseTableModel.h>
#include <analyzer/views/CaseTableWidget.h>
#include <analyzer/views/CellHover.h>
#include <analyzer/views/HoveredCase.h>
#include <analyzer/views/countText.h>
#include <analyzer/views/hoverOutline.h>

#include <QContextMenuEvent>
#include <QFontMetrics>
#include <QHeaderView>
#include <QKeyEvent>
#include <QKeySequence>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QStyle>
#include <QTimerEvent>

#include <algorithm>
#include <utility>

namespace analyzer {

namespace {

constexpr int minColumnWidthPx = 48;
constexpr int maxColumnWidthPx = 300;
constexpr int rowPaddingPx = 6;
constexpr int cellPaddingPx = 6; ///< for the bar of selected rows and for slanted letters

constexpr int sampledRows = 200;
constexpr int minSampledRows = 20;
constexpr int maxSampledCells = 20000; ///< with very many columns, fewer rows are looked at

constexpr int dragScrollDelayMs = 50;

} // namespace

CaseTableWidget::CaseTableWidget(
    CaseTableModel& model,
    CaseTableSelection& selection,
    boost::shared_ptr<HoveredCase> hovered,
    QWidget* parent)
    : QTableView(parent)
    , m_model(model)
    , m_selection(selection)
    , m_hovered(std::move(hovered))
{
    setAccessibleName(tr("Cases"));
    setSelectionMode(QAbstractItemView::NoSelection);
    // A press on a header would make the first cell below it the current one.
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setAutoScroll(
        false); // a press on a row that is half visible must not move the rows under the mouse
    setTabKeyNavigation(false);
    setWordWrap(false);
    setCornerButtonEnabled(false);
    setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    setItemDelegate(new CaseTableDelegate(m_model, m_selection, this));

    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setHighlightSections(false);
    verticalHeader()->setMinimumSectionSize(
        1); // raising it later resizes row by row, in quadratic time
    horizontalHeader()->setTextElideMode(Qt::ElideRight);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setSectionsClickable(true);
    horizontalHeader()->setSortIndicatorShown(true);
    fitRows();

    // Before the view connects itself: its current cell and its scroll positions are still there then.
    connect(
        &m_model,
        &QAbstractItemModel::layoutAboutToBeChanged,
        this,
        &CaseTableWidget::rememberPlace);
    connect(&m_model, &QAbstractItemModel::modelAboutToBeReset, this, [this] {
        rememberPlace();
        rememberWidths();
    });
    setModel(&m_model);
    // And after the view: it has the new rows then.
    connect(&m_model, &QAbstractItemModel::layoutChanged, this, &CaseTableWidget::restorePlace);
    connect(&m_model, &QAbstractItemModel::modelReset, this, [this] {
        restoreWidths();
        updateGeometries(); // the scroll bar must know the new number of rows
        restorePlace();
    });
    connect(&m_model, &CaseTableModel::sortingChanged, this, &CaseTableWidget::showSorting);
    connect(
        horizontalHeader(), &QHeaderView::sectionClicked, this, &CaseTableWidget::sortByNextOrder);
    // Scrolling moves what is painted; the bar of selected rows stays at the edge.
    connect(horizontalScrollBar(), &QScrollBar::valueChanged, viewport(), [this] {
        viewport()->update();
    });
    m_connections.add(m_selection.signalRowsChanged.connect(
        [this](CaseTableSelection::Origin origin) { onRowsChanged(origin); }));

    m_connections.add(
        m_hovered->signalHoveredCaseChanged.connect([this] { hoveredCaseChanged(); }));
    m_hover = std::make_unique<CellHover>(
        *this, m_hovered, [this](const QPoint& place) -> std::optional<unsigned long long> {
            const int viewRow = rowAt(place.y());
            if (viewRow < 0 || columnAt(place.x()) < 0) {
                return std::nullopt;
            }
            return m_model.cases().caseID(static_cast<std::size_t>(m_model.tableRow(viewRow)));
        });

    fitColumns();
    showSorting();
    describeSelection();
}

CaseTableWidget::~CaseTableWidget()
{
    m_connections.clear();
    m_hover.reset();
}

// ---- operations

bool CaseTableWidget::scrollToCase(unsigned long long caseID)
{
    const std::optional<int> viewRow = viewRowOf(caseID);
    if (!viewRow) {
        return false;
    }
    setCurrentViewRow(*viewRow, currentColumn());
    setAnchor(*viewRow);
    m_laterCase = caseID;
    m_showsSelectionLater = false;
    if (isVisible()) {
        m_laterCase.reset();
        if (!isRowVisible(*viewRow)) {
            showRowInMiddle(*viewRow);
        }
    }
    return true;
}

void CaseTableWidget::sortByNextOrder(int column)
{
    if (m_model.sortColumn() != column) {
        m_model.sort(column, Qt::AscendingOrder);
    } else if (m_model.sortOrder() == Qt::AscendingOrder) {
        m_model.sort(column, Qt::DescendingOrder);
    } else {
        m_model.sort(-1, Qt::AscendingOrder);
    }
}

void CaseTableWidget::fitColumns()
{
    for (int column = 0; column < m_model.columnCount(); ++column) {
        setColumnWidth(column, fittingWidth(column));
    }
}

void CaseTableWidget::selectAll()
{
    m_selection.selectAll();
}

void CaseTableWidget::keyboardSearch(const QString&) {}

// ---- mouse

void CaseTableWidget::mousePressEvent(QMouseEvent* event)
{
    // The base class would make the row of a right click the current one.
    if (event->button() == Qt::LeftButton) {
        press(*event);
    }
    event->accept();
}

void CaseTableWidget::mouseDoubleClickEvent(QMouseEvent* event)
{
    mousePressEvent(event);
    const QModelIndex index = indexAt(event->pos());
    if (event->button() == Qt::LeftButton && index.isValid()) {
        Q_EMIT doubleClicked(index);
    }
}

void CaseTableWidget::mouseMoveEvent(QMouseEvent* event)
{
    if (!event->buttons().testFlag(Qt::LeftButton)) {
        endDrag(); // the release went to somebody else
        QTableView::mouseMoveEvent(event);
        return;
    }
    if (m_isDragging) {
        dragTo(event->pos());
    }
    event->accept();
}

void CaseTableWidget::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton) {
        endDrag();
    }
    event->accept();
}

void CaseTableWidget::press(const QMouseEvent& event)
{
    const bool extends = event.modifiers().testFlag(Qt::ShiftModifier);
    const bool keeps = event.modifiers().testFlag(Qt::ControlModifier);
    const int viewRow = rowAt(event.pos().y());
    if (viewRow < 0) {
        if (!extends && !keeps) {
            m_selection.clear();
        }
        return;
    }
    const int anchor = extends ? anchorViewRow(viewRow) : viewRow;
    setAnchor(anchor);
    const int column = columnAt(event.pos().x());
    setCurrentViewRow(viewRow, column < 0 ? currentColumn() : column);

    if (extends) {
        m_dragMode = keeps ? RangeMode::Add : RangeMode::ReplaceShown;
    } else if (keeps) {
        m_dragMode =
            m_selection.contains(m_model.tableRow(viewRow)) ? RangeMode::Remove : RangeMode::Add;
    } else {
        m_dragMode = RangeMode::Replace;
    }
    m_isDragging = true;
    m_dragViewRow = viewRow;
    m_selection.previewRange(anchor, viewRow, m_dragMode);
}

void CaseTableWidget::dragTo(const QPoint& position)
{
    if (!m_selection.hasPreview()) {
        endDrag(); // something else changed the selection, and that stays
        return;
    }
    m_dragPosition = position;
    const int height = viewport()->height();
    const bool isInside = position.y() >= 0 && position.y() < height;
    if (isInside) {
        m_dragScrollTimer.stop();
    } else if (!m_dragScrollTimer.isActive()) {
        m_dragScrollTimer.start(dragScrollDelayMs, this);
    }
    int viewRow = rowAt(std::clamp(position.y(), 0, std::max(height - 1, 0)));
    if (viewRow < 0) {
        viewRow = m_model.rowCount() - 1;
    }
    if (viewRow != m_dragViewRow) {
        m_dragViewRow = viewRow;
        setCurrentViewRow(viewRow, currentColumn());
        m_selection.previewRange(anchorViewRow(viewRow), viewRow, m_dragMode);
    }
}

void CaseTableWidget::endDrag()
{
    m_dragScrollTimer.stop();
    if (m_isDragging) {
        m_isDragging = false;
        m_selection.commitPreview();
    }
}

void CaseTableWidget::scrollWhileDragging()
{
    const int below = m_dragPosition.y() - (viewport()->height() - 1);
    const int above = -m_dragPosition.y();
    const int distance = std::max(below, above);
    const int rows = 1 + distance / std::max(verticalHeader()->defaultSectionSize(), 1);
    QScrollBar& bar = *verticalScrollBar();
    bar.setValue(bar.value() + (below > 0 ? rows : -rows));
    dragTo(m_dragPosition);
}

void CaseTableWidget::timerEvent(QTimerEvent* event)
{
    if (event->timerId() == m_dragScrollTimer.timerId()) {
        scrollWhileDragging();
        return;
    }
    QTableView::timerEvent(event);
}

void CaseTableWidget::contextMenuEvent(QContextMenuEvent* event)
{
    const bool isByMouse = event->reason() == QContextMenuEvent::Mouse;
    const int viewRow = isByMouse ? rowAt(event->pos().y()) : currentIndex().row();
    QPoint position = event->globalPos();
    if (!isByMouse && viewRow >= 0) {
        position = viewport()->mapToGlobal(visualRect(currentIndex()).center());
    }
    std::optional<unsigned long long> caseID;
    if (viewRow >= 0) {
        caseID = m_model.cases().caseID(static_cast<std::size_t>(m_model.tableRow(viewRow)));
    }
    event->accept();
    signalMenuRequested(caseID, position);
}

// ---- keyboard

void CaseTableWidget::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape) {
        event->ignore();
        return;
    }
    if (event->matches(QKeySequence::SelectAll)) {
        selectAll();
        event->accept();
        return;
    }
    if (event->key() == Qt::Key_Space && currentIndex().isValid()) {
        setAnchor(currentIndex().row());
        m_selection.toggle(m_model.tableRow(currentIndex().row()));
        event->accept();
        return;
    }
    if (moveByKey(*event)) {
        event->accept();
        return;
    }
    const QModelIndex before = currentIndex();
    QTableView::keyPressEvent(event);
    if (currentIndex() != before) {
        scrollTo(currentIndex());
    }
}

bool CaseTableWidget::moveByKey(const QKeyEvent& event)
{
    if ((event.modifiers() & (Qt::AltModifier | Qt::MetaModifier)) != 0) {
        return false;
    }
    const std::optional<int> target = targetRow(event.key());
    if (!target) {
        return false;
    }
    const bool extends = event.modifiers().testFlag(Qt::ShiftModifier);
    const bool keeps = event.modifiers().testFlag(Qt::ControlModifier);
    const int anchor = anchorViewRow(currentIndex().isValid() ? currentIndex().row() : *target);
    setCurrentViewRow(*target, currentColumn());
    showRowAtEdge(*target);
    if (extends) {
        setAnchor(anchor);
        m_selection.selectRange(anchor, *target, keeps ? RangeMode::Add : RangeMode::ReplaceShown);
    } else if (!keeps) {
        setAnchor(*target);
        m_selection.selectOnly(m_model.tableRow(*target));
    }
    return true;
}

std::optional<int> CaseTableWidget::targetRow(int key) const
{
    const int last = m_model.rowCount() - 1;
    if (last < 0) {
        return std::nullopt;
    }
    const int current = currentIndex().row(); // -1 for none
    const int page = std::max(fullRowsOnPage() - 1, 1);
    switch (key) {
    case Qt::Key_Up:
        return std::max(current - 1, 0);
    case Qt::Key_Down:
        return std::min(current + 1, last);
    case Qt::Key_PageUp:
        return std::max(current - page, 0);
    case Qt::Key_PageDown:
        return std::min(current + page, last);
    case Qt::Key_Home:
        return 0;
    case Qt::Key_End:
        return last;
    default:
        return std::nullopt;
    }
}

// ---- selection

void CaseTableWidget::onRowsChanged(CaseTableSelection::Origin origin)
{
    viewport()->update();
    describeSelection();
    if (origin == CaseTableSelection::Origin::Master && m_followsSelection) {
        m_showsSelectionLater = !isVisible();
        m_laterCase.reset();
        if (isVisible()) {
            bringSelectionIntoView();
        }
    }
}

void CaseTableWidget::bringSelectionIntoView()
{
    if (m_selection.count() > 0 && !isSelectionVisible()) {
        showRowInMiddle(firstSelectedViewRow());
    }
}

bool CaseTableWidget::isSelectionVisible() const
{
    for (int viewRow = firstVisibleRow(); viewRow < m_model.rowCount() && isRowVisible(viewRow);
         ++viewRow) {
        if (m_selection.contains(m_model.tableRow(viewRow))) {
            return true;
        }
    }
    return false;
}

int CaseTableWidget::firstSelectedViewRow() const
{
    if (m_model.isInTableOrder()) {
        return static_cast<int>(m_selection.rows().next(0));
    }
    int first = m_model.rowCount();
    m_selection.rows().forEach([this, &first](std::size_t row) {
        first = std::min(first, m_model.viewRow(static_cast<int>(row)));
    });
    return first;
}

void CaseTableWidget::describeSelection()
{
    setAccessibleDescription(tr("%1 of %2 cases selected")
                                 .arg(
                                     countText(m_selection.count()),
                                     countText(static_cast<std::size_t>(m_model.rowCount()))));
}

// ---- the hovered case

QRect CaseTableWidget::hoveredRowRect() const
{
    return rowRect(m_hovered->caseID()) & viewport()->rect();
}

void CaseTableWidget::paintEvent(QPaintEvent* event)
{
    QTableView::paintEvent(event);
    const QRect row = rowRect(m_hovered->caseID());
    if (row.intersects(event->rect())) {
        QPainter painter(viewport());
        drawHoverOutline(painter, row);
    }
}

void CaseTableWidget::hoveredCaseChanged()
{
    viewport()->update(rowRect(m_outlinedCase));
    m_outlinedCase = m_hovered->caseID();
    viewport()->update(rowRect(m_outlinedCase));
}

/// As wide as what is visible; empty if there is no such row.
QRect CaseTableWidget::rowRect(std::optional<unsigned long long> caseID) const
{
    const std::optional<int> viewRow = caseID ? viewRowOf(*caseID) : std::nullopt;
    if (!viewRow) {
        return {};
    }
    const int width =
        std::min(horizontalHeader()->length() - horizontalHeader()->offset(), viewport()->width());
    return {0, rowViewportPosition(*viewRow), width, rowHeight(*viewRow)};
}

void CaseTableWidget::showSorting()
{
    horizontalHeader()->setSortIndicator(m_model.sortColumn(), m_model.sortOrder());
    if (m_model.isSorting()) {
        horizontalHeader()->viewport()->setCursor(Qt::BusyCursor);
    } else {
        horizontalHeader()->viewport()->unsetCursor();
    }
}

// ---- the rows move

void CaseTableWidget::rememberPlace()
{
    m_place.reset();
    const QModelIndex current = currentIndex();
    if (!current.isValid()) {
        return;
    }
    const auto tableRow = static_cast<std::size_t>(m_model.tableRow(current.row()));
    m_place = Place{m_model.cases().caseID(tableRow), current.column(), std::nullopt};
    if (isRowVisible(current.row())) {
        m_place->rowsBelowTop = current.row() - firstVisibleRow();
    }
}

void CaseTableWidget::restorePlace()
{
    m_dragViewRow = -1;
    if (!m_place) {
        return;
    }
    const Place place = *m_place;
    m_place.reset();
    const std::optional<int> viewRow = viewRowOf(place.caseID);
    if (!viewRow) {
        return;
    }
    setCurrentViewRow(*viewRow, std::min(place.column, m_model.columnCount() - 1));
    if (place.rowsBelowTop) {
        verticalScrollBar()->setValue(*viewRow - *place.rowsBelowTop);
    }
}

void CaseTableWidget::rememberWidths()
{
    for (int column = 0; column < m_model.columnCount(); ++column) {
        m_widths[m_model.headerData(column, Qt::Horizontal).toString()] = columnWidth(column);
    }
}

void CaseTableWidget::restoreWidths()
{
    for (int column = 0; column < m_model.columnCount(); ++column) {
        const auto known = m_widths.find(m_model.headerData(column, Qt::Horizontal).toString());
        setColumnWidth(column, known != m_widths.end() ? known->second : fittingWidth(column));
    }
}

int CaseTableWidget::fittingWidth(int column) const
{
    QFont cellFont = font();
    cellFont.setBold(column == 0); // as the case IDs of selected rows are
    const QFontMetrics metrics(cellFont);
    const int rowCount = m_model.rowCount();
    const int rows = std::clamp(
        maxSampledCells / std::max(m_model.columnCount(), 1), minSampledRows, sampledRows);
    const int step = std::max(rowCount / rows, 1);
    int width = 0;
    for (int row = 0; row < rowCount; row += step) {
        width = std::max(
            width, metrics.horizontalAdvance(m_model.index(row, column).data().toString()));
    }
    if (rowCount > 0) {
        // The last IDs are the longest ones, and often so are the last values.
        width = std::max(
            width,
            metrics.horizontalAdvance(m_model.index(rowCount - 1, column).data().toString()));
    }
    const int margin = style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, this) + 1;
    width =
        std::max(width + 2 * margin + cellPaddingPx, horizontalHeader()->sectionSizeHint(column));
    return std::clamp(width, minColumnWidthPx, maxColumnWidthPx);
}

void CaseTableWidget::fitRows()
{
    const int height = fontMetrics().height() + rowPaddingPx;
    {
        // The header announces every row by itself, and the view would look each one up.
        const QSignalBlocker blocker(verticalHeader());
        verticalHeader()->setDefaultSectionSize(height);
    }
    scheduleDelayedItemsLayout();
}

void CaseTableWidget::changeEvent(QEvent* event)
{
    QTableView::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
        fitRows();
    }
}

void CaseTableWidget::showEvent(QShowEvent* event)
{
    QTableView::showEvent(event);
    doItemsLayout(); // what follows needs the scroll bar's range
    if (m_laterCase) {
        const std::optional<int> viewRow = viewRowOf(*m_laterCase);
        m_laterCase.reset();
        if (viewRow && !isRowVisible(*viewRow)) {
            showRowInMiddle(*viewRow);
        }
    } else if (m_showsSelectionLater) {
        bringSelectionIntoView();
    }
    m_showsSelectionLater = false;
}

// ---- rows and places

void CaseTableWidget::setCurrentViewRow(int viewRow, int column)
{
    selectionModel()->setCurrentIndex(
        m_model.index(viewRow, column), QItemSelectionModel::NoUpdate);
}

void CaseTableWidget::setAnchor(int viewRow)
{
    m_anchorCase = m_model.cases().caseID(static_cast<std::size_t>(m_model.tableRow(viewRow)));
}

int CaseTableWidget::anchorViewRow(int otherwise) const
{
    return m_anchorCase ? viewRowOf(*m_anchorCase).value_or(otherwise) : otherwise;
}

std::optional<int> CaseTableWidget::viewRowOf(unsigned long long caseID) const
{
    const std::optional<std::size_t> tableRow = m_model.cases().row(caseID);
    return tableRow ? std::optional<int>(m_model.viewRow(static_cast<int>(*tableRow)))
                    : std::nullopt;
}

int CaseTableWidget::currentColumn() const
{
    return std::max(currentIndex().column(), 0);
}

int CaseTableWidget::firstVisibleRow() const
{
    return verticalScrollBar()->value();
}

int CaseTableWidget::fullRowsOnPage() const
{
    return std::max(viewport()->height() / std::max(verticalHeader()->defaultSectionSize(), 1), 1);
}

bool CaseTableWidget::isRowVisible(int viewRow) const
{
    return viewRow >= firstVisibleRow() && viewRow < firstVisibleRow() + fullRowsOnPage();
}

void CaseTableWidget::showRowAtEdge(int viewRow)
{
    if (viewRow < firstVisibleRow()) {
        verticalScrollBar()->setValue(viewRow);
    } else if (!isRowVisible(viewRow)) {
        verticalScrollBar()->setValue(viewRow - fullRowsOnPage() + 1);
    }
}

void CaseTableWidget::showRowInMiddle(int viewRow)
{
    verticalScrollBar()->setValue(viewRow - fullRowsOnPage() / 2);
}

} // namespace analyzer
