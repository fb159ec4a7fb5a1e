#pragma once

#include <analyzer/views/HoveredCase.h>

#include <QWidget>

#include <boost/shared_ptr.hpp>

class QLabel;
class QStackedLayout;

namespace analyzer {

class SelectedCasesModel;
class SelectedCasesTable;

/// A line that says what is compared, and the table below it, or a message in the place of both.
class SelectedCasesWidget : public QWidget
{
    Q_OBJECT

public:
    /// \p model outlives the widget.
    SelectedCasesWidget(
        SelectedCasesModel& model,
        boost::shared_ptr<HoveredCase> hovered,
        QWidget* parent = nullptr);

    /// Shows the table under \p line.
    void showTable(const QString& line);

    void showMessage(const QString& message);

    [[nodiscard]] SelectedCasesTable& table() const { return *m_table; }

    // ---- for tests

    /// The line above the table.
    [[nodiscard]] QString line() const;

    /// What is shown in place of the table; empty while there is a table.
    [[nodiscard]] QString message() const;

private:
    QStackedLayout* m_pages;
    QLabel* m_message;
    QLabel* m_line;
    SelectedCasesTable* m_table;
};

} // namespace analyzer
