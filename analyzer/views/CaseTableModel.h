#pragma once

#include <analyzer/views/CaseTableIndex.h>
#include <analyzer/views/CaseTableOrder.h>

#include <QAbstractTableModel>
#include <QString>
#include <QThreadPool>

#include <vtkSmartPointer.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

class vtkAbstractArray;
class vtkDoubleArray;
class vtkIntArray;
class vtkStringArray;
class vtkTable;

namespace analyzer {

/// A table of cases for Qt's views: every column of a table, in an order of choice.
///
/// Nothing is copied out of the table; a cell's text is made when it is shown. Sorting a large table runs in a
/// thread of its own while the rows stay as they are; the new order arrives in the GUI thread, to which everything
/// else belongs. Rows are counted twice: as the view shows them (view rows, those of the model's indexes) and as
/// they are in the table (table rows).
class CaseTableModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Role
    {
        MissingRole = Qt::UserRole ///< bool: the case has no value here
    };

    /// Tables up to this size are sorted at once and not in a thread.
    static constexpr int maxRowsSortedAtOnce = 20000;

    explicit CaseTableModel(QObject* parent = nullptr);
    CaseTableModel(const CaseTableModel&) = delete;
    CaseTableModel& operator=(const CaseTableModel&) = delete;
    ~CaseTableModel() override;

    /// Shows \p table, or nothing for a null pointer. Column 0, a vtkIntArray, holds the case IDs, which are not
    /// negative; the others are vtkDoubleArray (a missing value is NaN), vtkStringArray (UTF-8; a missing value is
    /// the empty text) or vtkIntArray. The columns are shared and must not change any more; what the table itself
    /// does later is of no matter. The table is sorted as the one before was if it has a column of that name.
    /// \throws ExceptionBase for any other table; the model then keeps the one it has.
    void setTable(vtkSmartPointer<vtkTable> table);

    // ---- cases

    /// The row of the table that is shown in \p viewRow, which must exist.
    [[nodiscard]] int tableRow(int viewRow) const { return m_order.tableRow(viewRow); }

    /// Where \p tableRow, which must exist, is shown.
    [[nodiscard]] int viewRow(int tableRow) const { return m_order.viewRow(tableRow); }

    /// Whether view rows and table rows are the same.
    [[nodiscard]] bool isInTableOrder() const { return m_order.isTableOrder(); }

    /// The rows of the table by case ID; announced to change by modelReset().
    [[nodiscard]] const CaseTableIndex& cases() const { return m_cases; }

    // ---- sorting

    /// Sorts by \p column, or goes back to the order of the table for a column that does not exist, such as -1.
    /// What is being sorted already is given up. Equal values keep the order of the table, missing ones are last.
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

    /// The column by which the table is sorted or is about to be; -1 for the order of the table.
    [[nodiscard]] int sortColumn() const { return m_sortColumn; }

    [[nodiscard]] Qt::SortOrder sortOrder() const { return m_sortOrder; }

    /// Whether the rows are still shown in an older order than the one asked for.
    [[nodiscard]] bool isSorting() const { return m_job != nullptr; }

    /// Returns when the rows are in the order asked for.
    void waitForSort();

    // ---- Qt's model

    [[nodiscard]] int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    [[nodiscard]] QVariant data(
        const QModelIndex& index, int role = Qt::DisplayRole) const override;
    [[nodiscard]] QVariant headerData(
        int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

Q_SIGNALS:
    /// sortColumn(), sortOrder() or isSorting() changed.
    void sortingChanged();

private:
    struct SortJob;

    /// A column under its class: exactly one of the three pointers is set.
    struct Column
    {
        vtkSmartPointer<vtkAbstractArray> array;
        vtkDoubleArray* reals = nullptr;
        vtkStringArray* texts = nullptr;
        vtkIntArray* integers = nullptr;
        QString name;
    };

    static std::vector<Column> columnsOf(vtkTable& table);

    [[nodiscard]] const vtkSmartPointer<vtkAbstractArray>& columnToSortBy() const;
    void startSort();
    void cancelSort();
    void finishSort();
    void applyOrder(CaseTableOrder order);

    [[nodiscard]] static bool isMissing(const Column& column, int tableRow);
    [[nodiscard]] static QString displayText(const Column& column, int tableRow);
    [[nodiscard]] static QString fullText(const Column& column, int tableRow);

    std::vector<Column> m_columns;
    int m_rowCount = 0;
    CaseTableIndex m_cases;
    CaseTableOrder m_order;
    int m_sortColumn = -1;
    Qt::SortOrder m_sortOrder = Qt::AscendingOrder;
    std::shared_ptr<SortJob> m_job; ///< the sort under way, if there is one
    QThreadPool m_pool; ///< one thread: a newer sort waits for the end of the one that was given up
};

} // namespace analyzer
