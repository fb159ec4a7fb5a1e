#include <analyzer/views/CaseValuesTable.h>

#include <dataviews/platform/data/AuxFile.h>
#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/data/Record.h>
#include <dataviews/platform/data/variantDisplayText.h>

#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QFontMetrics>
#include <QHeaderView>
#include <QKeyEvent>
#include <QScopedValueRollback>
#include <QScrollBar>

#include <algorithm>

namespace analyzer {

namespace {

constexpr int rowPaddingPx = 6;
constexpr int maxNameWidthPx = 180;

QString joined(const std::vector<std::string>& texts)
{
    QStringList list;
    for (const std::string& text : texts) {
        list.append(QString::fromStdString(text));
    }
    return list.join(QStringLiteral(", "));
}

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

CaseValuesTable::CaseValuesTable(QWidget* parent)
    : QTableWidget(0, 2, parent)
{
    setAccessibleName(tr("Values of the case"));
    setHorizontalHeaderLabels({tr("Variable"), tr("Value")});
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setTabKeyNavigation(false);
    setWordWrap(false);
    setTextElideMode(Qt::ElideMiddle); // of a path both ends count
    setCornerButtonEnabled(false);
    setVerticalScrollMode(QAbstractItemView::ScrollPerItem); // the place is a row
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    verticalHeader()->hide();
    verticalHeader()->setDefaultSectionSize(QFontMetrics(font()).height() + rowPaddingPx);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setSectionResizeMode(1, QHeaderView::Stretch);
    horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    setMinimumSize(100, 80);
    connect(horizontalHeader(), &QHeaderView::sectionResized, this, [this](int column) {
        if (column == 0 && !m_isSizing) {
            m_nameWidth = columnWidth(0);
        }
    });
    QScrollBar* bar = verticalScrollBar();
    connect(bar, &QScrollBar::rangeChanged, this, &CaseValuesTable::scrollToFirstRow);
    connect(bar, &QScrollBar::valueChanged, this, [this](int row) {
        if (!m_isAdjusting) {
            m_firstRow = row;
        }
    });
}

void CaseValuesTable::setNameWidth(std::optional<int> width)
{
    m_nameWidth = width;
    sizeNames();
}

void CaseValuesTable::sizeNames()
{
    const QScopedValueRollback<bool> sizing(m_isSizing, true);
    if (m_nameWidth) {
        setColumnWidth(0, *m_nameWidth);
        return;
    }
    resizeColumnToContents(0);
    setColumnWidth(0, std::min(columnWidth(0), maxNameWidthPx));
}

void CaseValuesTable::setFirstRow(int row)
{
    m_firstRow = std::max(row, 0);
    scrollToFirstRow();
}

/// The rows may come after the place: it is kept until they are there.
void CaseValuesTable::scrollToFirstRow()
{
    const QScopedValueRollback<bool> adjusting(m_isAdjusting, true);
    verticalScrollBar()->setValue(m_firstRow);
}

void CaseValuesTable::showCase(const Record& record, const AuxFile& file)
{
    std::vector<std::pair<QString, QString>> rows = {
        {tr("Case ID"), QString::number(record.caseID())},
        {tr("Tags"), joined(file.tags())},
        {tr("File"), QDir::toNativeSeparators(QString::fromStdString(file.filePath()))}};
    for (const WeakPtr<Variable>& handle : Project::project().variables()) {
        if (const boost::shared_ptr<Variable> variable = handle.lock()) {
            rows.emplace_back(
                QString::fromStdString(variable->name()),
                QString::fromStdString(variantDisplayText(record.value(*variable))));
        }
    }
    showRows(rows);
}

void CaseValuesTable::clearCase()
{
    setRowCount(0);
}

void CaseValuesTable::showRows(const std::vector<std::pair<QString, QString>>& rows)
{
    const auto setText = [this](int row, int column, const QString& text) {
        QTableWidgetItem* shown = item(row, column);
        if (shown == nullptr) {
            shown = new QTableWidgetItem;
            setItem(row, column, shown);
        } else if (shown->text() == text) {
            return false;
        }
        shown->setText(text);
        shown->setToolTip(text.toHtmlEscaped());
        return true;
    };
    bool namesChanged = rowCount() != static_cast<int>(rows.size());
    setRowCount(static_cast<int>(rows.size()));
    for (int row = 0; row < rowCount(); ++row) {
        const auto& [name, value] = rows[static_cast<std::size_t>(row)];
        namesChanged = setText(row, 0, name) || namesChanged;
        setText(row, 1, value);
    }
    if (namesChanged) {
        sizeNames();
    }
}

void CaseValuesTable::copy() const
{
    QModelIndexList cells = selectedIndexes();
    if (cells.isEmpty()) {
        return;
    }
    if (cells.size() == 1) {
        QApplication::clipboard()->setText(cells.front().data().toString());
        return;
    }
    std::sort(cells.begin(), cells.end());
    QString text;
    int row = cells.front().row();
    bool isFirst = true;
    for (const QModelIndex& cell : cells) {
        if (!isFirst) {
            text += QLatin1Char(cell.row() == row ? '\t' : '\n');
        }
        isFirst = false;
        row = cell.row();
        text += quotedIfNeeded(cell.data().toString());
    }
    QApplication::clipboard()->setText(text);
}

bool CaseValuesTable::event(QEvent* event)
{
    // The key is for this table, whatever menu entry has it too.
    if (event->type() == QEvent::ShortcutOverride
        && static_cast<QKeyEvent*>(event)->matches(QKeySequence::Copy)) {
        event->accept();
        return true;
    }
    return QTableWidget::event(event);
}

void CaseValuesTable::keyPressEvent(QKeyEvent* event)
{
    if (event->matches(QKeySequence::Copy)) {
        copy();
        event->accept();
        return;
    }
    QTableWidget::keyPressEvent(event);
}

} // namespace analyzer
