#pragma once

#include <dataviews/platform/data/Variable.h>

#include <QAbstractTableModel>
#include <QString>

#include <vtkSmartPointer.h>
#include <vtkTable.h>

#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <optional>
#include <vector>

class Project;

namespace analyzer {

/// Some cases side by side for Qt's views: a row for each variable, a column for each case.
///
/// Which rows differ is found when the cases are set, in one typed pass along each variable; a cell's text is made when
/// it is shown. Two missing values are equal; a missing one and a value differ. Made for some hundred cases. Used on
/// the GUI thread.
class SelectedCasesModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Role
    {
        DifferenceRole = Qt::
            UserRole, ///< text: how far the number is from that of the reference case; may be empty
        StrengthRole, ///< double from 0 to 1: how strongly the cell is marked; invalid if it is not
        MissingRole, ///< bool: the case has no value here
        HeadingRole, ///< bool: the row is the heading of a group of variables
        FullTextRole ///< text: the value with all its digits; empty if it is missing
    };

    /// Which variables have a row.
    enum class Rows
    {
        All,
        Differing ///< those whose values are not the same in all columns; all of them while there are less than two
    };

    /// What marks a cell.
    enum class Mark
    {
        Differences, ///< that it differs from the reference case, or without one, that its row differs
        Magnitude ///< where its number is in the range of the variable over the whole study
    };

    /// What is said of a number beside that of the reference case.
    enum class Difference
    {
        Percent, ///< of the reference's magnitude; absolute where that is zero
        Absolute,
        Nothing
    };

    /// The order of the variables.
    enum class Order
    {
        Study,
        Nature ///< inputs, outputs, identifiers, each under a heading
    };

    explicit SelectedCasesModel(QObject* parent = nullptr);
    SelectedCasesModel(const SelectedCasesModel&) = delete;
    SelectedCasesModel& operator=(const SelectedCasesModel&) = delete;
    ~SelectedCasesModel() override;

    /// Shows the cases \p caseIDs of \p project from left to right, the others in comparison with the one in column
    /// \p reference, if there is one. IDs that the study does not have must not be among them.
    void showCases(
        const Project& project,
        const std::vector<unsigned long long>& caseIDs,
        std::optional<std::size_t> reference);

    /// Shows no case and lets go of the study.
    void clear();

    void setRows(Rows rows);
    void setMark(Mark mark);
    void setDifference(Difference difference);
    void setOrder(Order order);

    [[nodiscard]] Difference difference() const { return m_difference; }

    /// The case in \p column; nothing for a column that does not exist.
    [[nodiscard]] std::optional<unsigned long long> caseID(int column) const;

    /// The column of the reference case.
    [[nodiscard]] std::optional<std::size_t> reference() const { return m_reference; }

    /// The variable in \p row; a null pointer for a heading.
    [[nodiscard]] const Variable* variable(int row) const;

    [[nodiscard]] std::size_t variableCount() const { return m_lines.size(); }

    /// The number of variables whose values are not the same in all columns.
    [[nodiscard]] std::size_t differingCount() const;

    /// Whether the values in \p row, which must exist, are not the same in all columns.
    [[nodiscard]] bool isDiffering(int row) const;

    // ---- Qt's model

    [[nodiscard]] int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    [[nodiscard]] QVariant data(
        const QModelIndex& index, int role = Qt::DisplayRole) const override;
    [[nodiscard]] QVariant headerData(
        int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

Q_SIGNALS:
    /// The variables are those of another study.
    void studyChanged();

private:
    /// A variable.
    struct Line
    {
        boost::shared_ptr<Variable> variable;
        bool differs = false;
        mutable std::optional<bool>
            needsAllDigits; ///< or they would all read the same; found when it is shown
    };

    struct Column
    {
        unsigned long long caseID = 0;
        std::size_t studyRow = 0;
    };

    /// A row of the table: a variable, or the heading of a group.
    struct Row
    {
        std::optional<std::size_t> line;
        Variable::Nature nature = Variable::Identifier; ///< of a heading
    };

    void takeVariables(const Project& project);
    void findDifferences();
    void arrange();
    void rearrange();
    void addRows(std::optional<Variable::Nature> nature);
    void repaint();

    [[nodiscard]] const Line* line(int row) const;
    [[nodiscard]] std::optional<std::size_t> studyRowOfReference() const;
    [[nodiscard]] bool needsAllDigits(const Line& line) const;
    [[nodiscard]] QString displayText(const Line& line, std::size_t studyRow) const;
    [[nodiscard]] QString differenceText(const Line& line, std::size_t studyRow) const;
    [[nodiscard]] QVariant strength(const Line& line, std::size_t studyRow) const;
    [[nodiscard]] QString toolTip(const Line& line, const Column& column) const;
    [[nodiscard]] QString accessibleText(const Line& line, std::size_t studyRow) const;
    [[nodiscard]] QVariant nameData(int row, int role) const;
    [[nodiscard]] QVariant caseData(int column, int role) const;

    vtkSmartPointer<vtkTable> m_study; ///< tells studies apart
    std::vector<Line> m_lines; ///< in the order of the study
    std::vector<Column> m_columns;
    std::vector<Row> m_rows;
    std::optional<std::size_t> m_reference;
    Rows m_shownRows = Rows::All;
    Mark m_mark = Mark::Differences;
    Difference m_difference = Difference::Percent;
    Order m_order = Order::Study;
};

} // namespace analyzer
