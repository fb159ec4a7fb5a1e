#include <analyzer/views/CaseTableModel.h>

#include <dataviews/platform/data/Variant.h>
#include <dataviews/platform/data/variantDisplayText.h>
#include <dataviews/platform/property/ExceptionBase.h>

#include <QFont>
#include <QTextDocument>

#include <vtkDoubleArray.h>
#include <vtkIntArray.h>
#include <vtkStringArray.h>
#include <vtkTable.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdint>
#include <future>
#include <limits>
#include <string>
#include <utility>

namespace analyzer {

namespace {

// Longer texts are cut: no cell and no tool tip can show them, and laying them out takes time.
constexpr int maxCellLength = 300;
constexpr int maxToolTipLength = 4000;

QString cut(const std::string& text, int maxLength)
{
    // Four bytes are the most that a character takes.
    const std::size_t enough = static_cast<std::size_t>(maxLength) * 4;
    QString result =
        QString::fromUtf8(text.data(), static_cast<int>(std::min(text.size(), enough)));
    if (result.size() > maxLength || text.size() > enough) {
        result.truncate(maxLength);
        if (result.at(maxLength - 1).isHighSurrogate()) {
            result.chop(1);
        }
        result.append(QChar(0x2026)); // horizontal ellipsis
    }
    return result;
}

QString onOneLine(QString text)
{
    const QChar returnSign(0x21B5);
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    for (QChar& character : text) {
        switch (character.unicode()) {
        case '\n':
        case '\r':
        case '\v':
        case '\f':
        case 0x85:
        case QChar::LineSeparator:
        case QChar::ParagraphSeparator:
            character = returnSign;
            break;
        case '\t':
        case '\0':
            character = QLatin1Char(' ');
            break;
        default:
            break;
        }
    }
    return text;
}

/// Tool tips take a text that looks like markup for markup.
QString plainToolTip(const QString& text)
{
    return Qt::mightBeRichText(text)
        ? QStringLiteral("<span style=\"white-space: pre-wrap\">%1</span>")
              .arg(text.toHtmlEscaped())
        : text;
}

/// Whole numbers as integers, so that they are shown with all their digits.
Variant numberValue(double value)
{
    constexpr double firstNotWhole = 1e15;
    if (std::abs(value) < firstNotWhole && value == std::trunc(value)) {
        return Variant(static_cast<std::int64_t>(value));
    }
    return Variant(value);
}

} // namespace

struct CaseTableModel::SortJob
{
    explicit SortJob(vtkSmartPointer<vtkAbstractArray> columnToSort, Qt::SortOrder sortOrder)
        : column(std::move(columnToSort))
        , order(sortOrder)
        , result(promise.get_future())
    {}

    void run()
    {
        try {
            promise.set_value(CaseTableOrder::sorted(*column, order, &isCancelled));
        } catch (...) {
            promise.set_exception(std::current_exception());
        }
    }

    vtkSmartPointer<vtkAbstractArray> column;
    Qt::SortOrder order;
    std::atomic<bool> isCancelled{false};
    std::promise<CaseTableOrder> promise;
    std::future<CaseTableOrder> result;
};

CaseTableModel::CaseTableModel(QObject* parent)
    : QAbstractTableModel(parent)
{
    m_pool.setMaxThreadCount(1);
}

CaseTableModel::~CaseTableModel()
{
    if (m_job != nullptr) {
        m_job->isCancelled = true;
    }
    m_pool.waitForDone();
}

void CaseTableModel::setTable(vtkSmartPointer<vtkTable> table)
{
    std::vector<Column> columns = table == nullptr ? std::vector<Column>() : columnsOf(*table);
    CaseTableIndex cases =
        columns.empty() ? CaseTableIndex() : CaseTableIndex(columns.front().integers);
    int sortColumn = -1;
    if (m_sortColumn >= 0) {
        const QString& name = m_columns[static_cast<std::size_t>(m_sortColumn)].name;
        const auto place =
            std::find_if(columns.begin(), columns.end(), [&name](const Column& column) {
                return column.name == name;
            });
        sortColumn = place == columns.end() ? -1 : static_cast<int>(place - columns.begin());
    }

    beginResetModel();
    cancelSort();
    m_columns = std::move(columns);
    m_cases = std::move(cases);
    m_rowCount = static_cast<int>(m_cases.rowCount());
    m_order = CaseTableOrder();
    m_sortColumn = sortColumn;
    if (m_sortColumn >= 0 && m_rowCount <= maxRowsSortedAtOnce) {
        m_order = CaseTableOrder::sorted(*columnToSortBy(), m_sortOrder);
    } else if (m_sortColumn >= 0) {
        startSort();
    }
    endResetModel();
    Q_EMIT sortingChanged();
}

std::vector<CaseTableModel::Column> CaseTableModel::columnsOf(vtkTable& table)
{
    const vtkIdType rowCount = table.GetNumberOfRows();
    if (rowCount > std::numeric_limits<int>::max()) {
        throw ExceptionBase(
            "The table has " + std::to_string(rowCount)
            + " cases; at most 2147483647 can be shown.");
    }
    std::vector<Column> result;
    for (vtkIdType number = 0; number < table.GetNumberOfColumns(); ++number) {
        Column column;
        column.array = table.GetColumn(number);
        column.reals = vtkDoubleArray::SafeDownCast(column.array);
        column.texts = vtkStringArray::SafeDownCast(column.array);
        column.integers = vtkIntArray::SafeDownCast(column.array);
        const char* name = column.array->GetName();
        column.name = QString::fromUtf8(name == nullptr ? "" : name);
        const std::string title =
            "The column \"" + column.name.toStdString() + "\" of the table of cases ";
        if (column.reals == nullptr && column.texts == nullptr && column.integers == nullptr) {
            throw ExceptionBase(
                title + "holds " + column.array->GetClassName()
                + "; it must hold doubles, integers or texts.");
        }
        if (number == 0 && column.integers == nullptr) {
            throw ExceptionBase(title + "holds the case IDs and must hold integers.");
        }
        if (column.array->GetNumberOfComponents() != 1
            || column.array->GetNumberOfTuples() != rowCount) {
            throw ExceptionBase(
                title + "must hold one value for each of the " + std::to_string(rowCount)
                + " cases.");
        }
        result.push_back(std::move(column));
    }
    return result;
}

void CaseTableModel::sort(int column, Qt::SortOrder order)
{
    cancelSort();
    m_sortColumn = column >= 0 && column < columnCount() ? column : -1;
    m_sortOrder = order;
    if (m_sortColumn < 0) {
        applyOrder(CaseTableOrder());
    } else if (m_rowCount <= maxRowsSortedAtOnce) {
        applyOrder(CaseTableOrder::sorted(*columnToSortBy(), order));
    } else {
        startSort();
    }
    Q_EMIT sortingChanged();
}

const vtkSmartPointer<vtkAbstractArray>& CaseTableModel::columnToSortBy() const
{
    return m_columns[static_cast<std::size_t>(m_sortColumn)].array;
}

void CaseTableModel::startSort()
{
    m_job = std::make_shared<SortJob>(columnToSortBy(), m_sortOrder);
    m_pool.start([this, job = m_job]() mutable {
        job->run();
        // The job travels on with the message, none of it stays here: what it holds of the table is to die in the
        // GUI thread.
        QMetaObject::invokeMethod(
            this,
            [this, delivered = std::move(job)] {
                if (delivered == m_job) {
                    finishSort();
                }
            },
            Qt::QueuedConnection);
    });
}

void CaseTableModel::cancelSort()
{
    if (m_job != nullptr) {
        m_job->isCancelled = true;
        m_job.reset();
    }
}

void CaseTableModel::waitForSort()
{
    if (m_job != nullptr) {
        m_job->result.wait();
        finishSort();
    }
}

void CaseTableModel::finishSort()
{
    const std::shared_ptr<SortJob> job = std::move(m_job);
    m_job.reset();
    applyOrder(job->result.get());
    Q_EMIT sortingChanged();
}

void CaseTableModel::applyOrder(CaseTableOrder order)
{
    if (m_order.isTableOrder() && order.isTableOrder()) {
        return;
    }
    Q_EMIT layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    const QModelIndexList before = persistentIndexList();
    QModelIndexList after;
    after.reserve(before.size());
    for (const QModelIndex& index : before) {
        after.append(this->index(order.viewRow(m_order.tableRow(index.row())), index.column()));
    }
    m_order = std::move(order);
    changePersistentIndexList(before, after);
    Q_EMIT layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

int CaseTableModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_rowCount;
}

int CaseTableModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_columns.size());
}

QVariant CaseTableModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= m_rowCount || index.column() >= columnCount()) {
        return {};
    }
    const Column& column = m_columns[static_cast<std::size_t>(index.column())];
    const int row = tableRow(index.row());
    switch (role) {
    case Qt::DisplayRole:
        return displayText(column, row);
    case Qt::ToolTipRole:
        return isMissing(column, row) ? tr("No value") : plainToolTip(fullText(column, row));
    case Qt::AccessibleTextRole:
        return isMissing(column, row) ? tr("missing") : displayText(column, row);
    case Qt::TextAlignmentRole:
        return static_cast<int>(
            (column.texts == nullptr ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    case Qt::FontRole:
        if (isMissing(column, row)) {
            QFont font;
            font.setItalic(true);
            return font;
        }
        return {};
    case MissingRole:
        return isMissing(column, row);
    default:
        return {};
    }
}

QVariant CaseTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Vertical) {
        const bool names = role == Qt::DisplayRole && section >= 0 && section < m_rowCount;
        return names ? QVariant(m_cases.caseID(static_cast<std::size_t>(tableRow(section))))
                     : QVariant();
    }
    if (section < 0 || section >= columnCount()) {
        return {};
    }
    const Column& column = m_columns[static_cast<std::size_t>(section)];
    switch (role) {
    case Qt::DisplayRole:
        return onOneLine(column.name);
    case Qt::ToolTipRole:
        return plainToolTip(column.name);
    case Qt::TextAlignmentRole:
        return static_cast<int>(
            (column.texts == nullptr ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    default:
        return {};
    }
}

bool CaseTableModel::isMissing(const Column& column, int tableRow)
{
    if (column.reals != nullptr) {
        return std::isnan(column.reals->GetValue(tableRow));
    }
    return column.texts != nullptr && column.texts->GetValue(tableRow).empty();
}

QString CaseTableModel::displayText(const Column& column, int tableRow)
{
    if (isMissing(column, tableRow)) {
        return QString::fromStdString(variantDisplayText(Variant()));
    }
    if (column.texts != nullptr) {
        return onOneLine(cut(column.texts->GetValue(tableRow), maxCellLength));
    }
    const Variant value = column.reals != nullptr ? numberValue(column.reals->GetValue(tableRow))
                                                  : Variant(column.integers->GetValue(tableRow));
    return QString::fromStdString(variantDisplayText(value));
}

QString CaseTableModel::fullText(const Column& column, int tableRow)
{
    if (column.texts != nullptr) {
        return cut(column.texts->GetValue(tableRow), maxToolTipLength);
    }
    const Variant value = column.reals != nullptr ? numberValue(column.reals->GetValue(tableRow))
                                                  : Variant(column.integers->GetValue(tableRow));
    return QString::fromStdString(value.toString());
}

} // namespace analyzer
