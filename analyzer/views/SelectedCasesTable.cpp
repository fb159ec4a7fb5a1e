#include <analyzer/views/CellHover.h>
#include <analyzer/views/SelectedCasesDelegate.h>
#include <analyzer/views/SelectedCasesModel.h>
#include <analyzer/views/SelectedCasesNameHeader.h>
#include <analyzer/views/SelectedCasesTable.h>
#include <analyzer/views/hoverOutline.h>

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QFontMetrics>
#include <QHeaderView>
#include <QKeyEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScopedValueRollback>
#include <QScrollBar>

#include <algorithm>
#include <utility>

namespace analyzer {

namespace {

constexpr int minCaseWidthPx = 60;
constexpr int maxFittingCaseWidthPx = 220;
constexpr int minDraggedWidthPx = 24;
constexpr int maxWidthPx = 4000;
constexpr int rowPaddingPx = 6;
constexpr int sampledRows = 60;
constexpr int sampledColumns = 24;

QString quotedIfNeeded(const QString& text)
{
    const bool isPlain = std::none_of(text.begin(), text.end(), [](QChar c) {
        return c == QLatin1Char('\t') || c == QLatin1Char('\n') || c == QLatin1Char('\r')
            || c == QLatin1Char('"');
    });
    if (isPlain) {
        return text;
    }
    QString doubled = text;
    doubled.replace(QLatin1Char('"'), QStringLiteral("\"\""));
    return QLatin1Char('"') + doubled + QLatin1Char('"');
}

} // namespace

SelectedCasesTable::SelectedCasesTable(
    SelectedCasesModel& model, boost::shared_ptr<HoveredCase> hovered, QWidget* parent)
    : QTableView(parent)
    , m_model(model)
    , m_hovered(std::move(hovered))
    , m_delegate(new SelectedCasesDelegate(this))
    , m_names(new SelectedCasesNameHeader(this))
{
    setAccessibleName(tr("Values of the selected cases"));
    setVerticalHeader(m_names);
    setItemDelegate(m_delegate);
    setSelectionMode(QAbstractItemView::ContiguousSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setTabKeyNavigation(false);
    setWordWrap(false);
    setCornerButtonEnabled(false);
    setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    fitRows();

    connect(&m_model, &QAbstractItemModel::modelAboutToBeReset, this, [this] { rememberPlace(); });
    setModel(&m_model);
    // Behind the view itself, which has the new rows and columns then.
    connect(&m_model, &QAbstractItemModel::modelReset, this, [this] { restorePlace(); });
    connect(&m_model, &QAbstractItemModel::dataChanged, this, [this] { fitWidths(); });
    connect(&m_model, &SelectedCasesModel::studyChanged, this, [this] {
        m_widestFit = 0;
        fitWidths();
    });
    connectHeaders();

    m_connections.add(
        m_hovered->signalHoveredCaseChanged.connect([this] { hoveredCaseChanged(); }));
    m_cellHover = std::make_unique<CellHover>(
        *this, m_hovered, [this](const QPoint& place) { return caseAt(place); });
    m_headingHover =
        std::make_unique<CellHover>(*horizontalHeader(), m_hovered, [this](const QPoint& place) {
            return m_model.caseID(horizontalHeader()->logicalIndexAt(place));
        });
    fitWidths();
}

SelectedCasesTable::~SelectedCasesTable()
{
    m_connections.clear();
    m_cellHover.reset();
    m_headingHover.reset();
}

void SelectedCasesTable::connectHeaders()
{
    QHeaderView& cases = *horizontalHeader();
    cases.setHighlightSections(false);
    cases.setSectionsClickable(true);
    cases.setMinimumSectionSize(minDraggedWidthPx);
    cases.setTextElideMode(Qt::ElideRight);
    cases.viewport()->installEventFilter(this);
    connect(&cases, &QHeaderView::sectionResized, this, [this](int, int, int widthPx) {
        if (!m_isSizing) {
            m_draggedWidth = widthPx;
        }
    });
    connect(&cases, &QHeaderView::sectionHandleDoubleClicked, this, [this] {
        m_draggedWidth = 0;
        m_widestFit = 0;
        setCaseWidth(0);
    });
    for (QHeaderView* header : {&cases, static_cast<QHeaderView*>(m_names)}) {
        header->setContextMenuPolicy(Qt::CustomContextMenu);
    }
    connect(&cases, &QWidget::customContextMenuRequested, this, [this](const QPoint& place) {
        Q_EMIT menuRequested(
            horizontalHeader()->logicalIndexAt(place),
            horizontalHeader()->viewport()->mapToGlobal(place));
    });
    connect(m_names, &QWidget::customContextMenuRequested, this, [this](const QPoint& place) {
        Q_EMIT menuRequested(-1, m_names->viewport()->mapToGlobal(place));
    });
    connect(
        m_names, &SelectedCasesNameHeader::widthDragged, this, &SelectedCasesTable::setNameWidth);
    connect(
        m_names, &SelectedCasesNameHeader::edgeDoubleClicked, this, [this] { setNameWidth(0); });
}

// ---- widths

void SelectedCasesTable::setNameWidth(int widthPx)
{
    m_nameWidth =
        widthPx <= 0 ? 0 : std::clamp(widthPx, SelectedCasesNameHeader::minWidthPx, maxWidthPx);
    applyNameWidth();
}

void SelectedCasesTable::setCaseWidth(int widthPx)
{
    m_caseWidth = widthPx <= 0 ? 0 : std::clamp(widthPx, minDraggedWidthPx, maxWidthPx);
    applyCaseWidth();
}

void SelectedCasesTable::applyNameWidth()
{
    const int width = m_nameWidth > 0 ? m_nameWidth : m_names->fittingWidth();
    if (m_names->minimumWidth() != width || m_names->maximumWidth() != width) {
        m_names->setFixedWidth(width);
        updateGeometries();
    }
}

void SelectedCasesTable::applyCaseWidth()
{
    if (m_caseWidth == 0) {
        m_widestFit = std::max(m_widestFit, fittingCaseWidth());
    }
    const QScopedValueRollback<bool> sizing(m_isSizing, true);
    horizontalHeader()->setDefaultSectionSize(m_caseWidth > 0 ? m_caseWidth : m_widestFit);
}

void SelectedCasesTable::fitWidths()
{
    using Difference = SelectedCasesModel::Difference;
    const Difference difference = m_model.difference();
    const QString usual =
        difference == Difference::Percent ? QStringLiteral("+00.0 %") : QStringLiteral("+0.00000");
    const int differenceWidth = m_model.reference() && difference != Difference::Nothing
        ? fontMetrics().horizontalAdvance(usual)
        : 0;
    if (differenceWidth != m_delegate->differenceWidth()) {
        m_delegate->setDifferenceWidth(differenceWidth);
        m_widestFit = 0;
    }
    applyNameWidth();
    applyCaseWidth();
}

int SelectedCasesTable::fittingCaseWidth() const
{
    const int rows = m_model.rowCount();
    const int columns = m_model.columnCount();
    const QStyleOptionViewItem option = viewOptions();
    int width = minCaseWidthPx;
    for (int row = 0; row < rows; row += std::max(rows / sampledRows, 1)) {
        for (int column = 0; column < columns; column += std::max(columns / sampledColumns, 1)) {
            width =
                std::max(width, m_delegate->sizeHint(option, m_model.index(row, column)).width());
        }
    }
    for (const int column : {0, columns - 1}) { // the last heading is the longest one
        if (column >= 0 && column < columns) {
            width = std::max(width, horizontalHeader()->sectionSizeHint(column));
        }
    }
    return std::min(width, maxFittingCaseWidthPx);
}

void SelectedCasesTable::fitRows()
{
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + rowPaddingPx);
}

// ---- places

void SelectedCasesTable::rememberPlace()
{
    const QModelIndex current = currentIndex();
    m_place = {
        {horizontalScrollBar()->value(), verticalScrollBar()->value()},
        m_model.variable(current.row()),
        m_model.caseID(current.column())};
}

void SelectedCasesTable::restorePlace()
{
    fitWidths();
    updateGeometries(); // the scroll bars must know the new rows and columns
    horizontalScrollBar()->setValue(m_place.scrolled.x());
    verticalScrollBar()->setValue(m_place.scrolled.y());
    if (m_place.variable == nullptr || !m_place.caseID) {
        return;
    }
    const auto placeOf = [](int count, const auto& isIt) {
        int place = 0;
        while (place < count && !isIt(place)) {
            ++place;
        }
        return place;
    };
    const QModelIndex current = m_model.index(
        placeOf(
            m_model.rowCount(),
            [this](int row) { return m_model.variable(row) == m_place.variable; }),
        placeOf(m_model.columnCount(), [this](int column) {
            return m_model.caseID(column) == m_place.caseID;
        }));
    if (current.isValid()) {
        selectionModel()->setCurrentIndex(current, QItemSelectionModel::NoUpdate);
    }
}

std::optional<unsigned long long> SelectedCasesTable::caseAt(const QPoint& place) const
{
    return rowAt(place.y()) < 0 ? std::nullopt : m_model.caseID(columnAt(place.x()));
}

// ---- the hovered case

QRect SelectedCasesTable::columnRect(std::optional<unsigned long long> caseID) const
{
    for (int column = 0; caseID && column < m_model.columnCount(); ++column) {
        if (m_model.caseID(column) == caseID) {
            const int height = std::min(
                verticalHeader()->length() - verticalHeader()->offset(), viewport()->height());
            return {columnViewportPosition(column), 0, columnWidth(column), height};
        }
    }
    return {};
}

void SelectedCasesTable::hoveredCaseChanged()
{
    viewport()->update(columnRect(m_outlinedCase));
    m_outlinedCase = m_hovered->caseID();
    viewport()->update(columnRect(m_outlinedCase));
}

void SelectedCasesTable::paintEvent(QPaintEvent* event)
{
    QTableView::paintEvent(event);
    const QRect column = columnRect(m_hovered->caseID());
    if (column.intersects(event->rect())) {
        QPainter painter(viewport());
        drawHoverOutline(painter, column);
    }
}

// ---- events

bool SelectedCasesTable::event(QEvent* event)
{
    // The key is for this table, whatever menu entry has it too.
    if (event->type() == QEvent::ShortcutOverride
        && static_cast<QKeyEvent*>(event)->matches(QKeySequence::Copy)) {
        event->accept();
        return true;
    }
    return QTableView::event(event);
}

bool SelectedCasesTable::eventFilter(QObject* watched, QEvent* event)
{
    // Only at the end of the drag: if the columns at the left grew with it, the edge would run away from the mouse.
    if (watched == horizontalHeader()->viewport() && event->type() == QEvent::MouseButtonRelease
        && m_draggedWidth > 0) {
        setCaseWidth(std::exchange(m_draggedWidth, 0));
    }
    return QTableView::eventFilter(watched, event);
}

void SelectedCasesTable::keyPressEvent(QKeyEvent* event)
{
    if (event->matches(QKeySequence::Copy)) {
        copy();
        event->accept();
        return;
    }
    QTableView::keyPressEvent(event);
}

void SelectedCasesTable::copy() const
{
    const QItemSelection selection = selectionModel()->selection();
    if (selection.isEmpty()) {
        return;
    }
    const QItemSelectionRange& range = selection.front(); // the selection is one block
    const bool isSingle = range.width() == 1 && range.height() == 1;
    QString text;
    for (int row = range.top(); row <= range.bottom(); ++row) {
        for (int column = range.left(); column <= range.right(); ++column) {
            const QString cell =
                m_model.index(row, column).data(SelectedCasesModel::FullTextRole).toString();
            text += (column == range.left() ? QString() : QStringLiteral("\t"))
                + (isSingle ? cell : quotedIfNeeded(cell));
        }
        if (row < range.bottom()) {
            text += QLatin1Char('\n');
        }
    }
    QApplication::clipboard()->setText(text);
}

void SelectedCasesTable::contextMenuEvent(QContextMenuEvent* event)
{
    const bool isByMouse = event->reason() == QContextMenuEvent::Mouse;
    QPoint place = event->globalPos();
    int column = isByMouse ? columnAt(event->pos().x()) : currentIndex().column();
    if (isByMouse && rowAt(event->pos().y()) < 0) {
        column = -1;
    } else if (!isByMouse && currentIndex().isValid()) {
        place = viewport()->mapToGlobal(visualRect(currentIndex()).center());
    }
    event->accept();
    Q_EMIT menuRequested(column, place);
}

void SelectedCasesTable::changeEvent(QEvent* event)
{
    QTableView::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
        m_widestFit = 0;
        fitRows();
        fitWidths();
    }
}

} // namespace analyzer
