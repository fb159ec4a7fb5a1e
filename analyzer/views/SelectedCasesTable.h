#pragma once

#include <analyzer/views/HoveredCase.h>

#include <dataviews/platform/signals/SignalConnectionCollection.h>

#include <QPoint>
#include <QTableView>

#include <boost/shared_ptr.hpp>

#include <memory>
#include <optional>

namespace analyzer {

class CellHover;
class SelectedCasesDelegate;
class SelectedCasesModel;
class SelectedCasesNameHeader;

/// The grid of a SelectedCasesModel: names of variables at the left, cases as columns, cells to mark and copy.
///
/// All cases have the same width. Widths fit what is shown until the user drags them, and again after a double click on
/// the edge. The model outlives the table.
class SelectedCasesTable : public QTableView
{
    Q_OBJECT

public:
    SelectedCasesTable(
        SelectedCasesModel& model,
        boost::shared_ptr<HoveredCase> hovered,
        QWidget* parent = nullptr);
    SelectedCasesTable(const SelectedCasesTable&) = delete;
    SelectedCasesTable& operator=(const SelectedCasesTable&) = delete;
    ~SelectedCasesTable() override;

    // ---- what a session keeps; 0 is a width that fits

    [[nodiscard]] int nameWidth() const { return m_nameWidth; }

    void setNameWidth(int widthPx);

    [[nodiscard]] int caseWidth() const { return m_caseWidth; }

    void setCaseWidth(int widthPx);

    // ---- operations

    /// Measures again; for settings that change the texts.
    void fitWidths();

    /// Puts the marked cells on the clipboard, a line for each row and tabs between columns: numbers with all their
    /// digits, nothing where a value is missing. Of several cells, those with tabs, quotes or line breaks are quoted,
    /// as spreadsheets expect.
    void copy() const;

    /// The case at \p place of the viewport; nothing beside the cells.
    [[nodiscard]] std::optional<unsigned long long> caseAt(const QPoint& place) const;

    [[nodiscard]] SelectedCasesModel& cases() const { return m_model; }

Q_SIGNALS:
    /// The user wants a menu at \p place of the screen; \p column is that of the case it is for, or -1.
    void menuRequested(int column, const QPoint& place);

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    /// What is kept over a reset of the model.
    struct Place
    {
        QPoint scrolled; ///< right and down, in the steps of the scroll bars
        const void* variable = nullptr; ///< of the current cell
        std::optional<unsigned long long> caseID; ///< of the current cell
    };

    void connectHeaders();
    void rememberPlace();
    void restorePlace();
    void applyNameWidth();
    void applyCaseWidth();
    void fitRows();
    [[nodiscard]] int fittingCaseWidth() const;
    [[nodiscard]] QRect columnRect(std::optional<unsigned long long> caseID) const;
    void hoveredCaseChanged();

    SelectedCasesModel& m_model;
    boost::shared_ptr<HoveredCase> m_hovered;
    SelectedCasesDelegate* m_delegate;
    SelectedCasesNameHeader* m_names;
    int m_nameWidth = 0;
    int m_caseWidth = 0;
    int m_widestFit = 0; ///< of the cases so far: columns do not shake while the selection changes
    int m_draggedWidth = 0; ///< of a case, until the button is released
    bool m_isSizing = false; ///< the program sets the widths, not the user
    Place m_place;
    std::optional<unsigned long long> m_outlinedCase;
    std::unique_ptr<CellHover> m_cellHover;
    std::unique_ptr<CellHover> m_headingHover;
    SignalConnectionCollection m_connections;
};

} // namespace analyzer
