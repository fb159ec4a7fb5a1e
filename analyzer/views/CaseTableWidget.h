#pragma once

#include <analyzer/views/CaseTableSelection.h>

#include <dataviews/platform/signals/Signal.h>
#include <dataviews/platform/signals/SignalConnectionCollection.h>

#include <QBasicTimer>
#include <QPoint>
#include <QString>
#include <QTableView>

#include <boost/shared_ptr.hpp>

#include <map>
#include <memory>
#include <optional>

namespace analyzer {

class CellHover;
class HoveredCase;

/// The table of cases as people see and use it: mouse and keyboard gestures become operations of its selection.
///
/// Qt's selection model holds the current cell and never a selection, so that a million selected rows cost nothing.
///
/// Mouse: a click selects the row alone, with Ctrl takes it in or out, with Shift selects the rows from the last
/// one clicked, with both adds them; dragging selects rows until the button is released; a click below the rows
/// empties the selection. A click on a header sorts ascending, descending, and not at all. Keyboard: the arrow keys,
/// Page Up, Page Down, Home and End select the row they move to, with Shift all rows from where the selection
/// began, with Ctrl none; Space takes the current row in or out; Select All selects every row.
///
/// The row under the mouse is the hovered case; the row of the hovered case has an outline.
class CaseTableWidget : public QTableView
{
    Q_OBJECT

public:
    /// \p model and \p selection, which is one of \p model, outlive the widget. No other model is set later.
    CaseTableWidget(
        CaseTableModel& model,
        CaseTableSelection& selection,
        boost::shared_ptr<HoveredCase> hovered,
        QWidget* parent = nullptr);
    CaseTableWidget(const CaseTableWidget&) = delete;
    CaseTableWidget& operator=(const CaseTableWidget&) = delete;
    ~CaseTableWidget() override;

    /// A menu is asked for, with the mouse or the keyboard: the case that it is about, if there is one, and where
    /// on the screen. The selection is as it was; applying a rule of clicks to the case is up to the listener.
    Signal<void(std::optional<unsigned long long>, const QPoint&), CaseTableWidget>
        signalMenuRequested;

    /// Makes \p caseID the current case and brings it into view; false if the table does not have it.
    bool scrollToCase(unsigned long long caseID);

    /// Whether the first selected row is brought into view when the selection came from elsewhere and none of it is
    /// visible. On from the start.
    void setFollowsSelection(bool follows) { m_followsSelection = follows; }

    [[nodiscard]] bool followsSelection() const { return m_followsSelection; }

    /// What a click on the header of \p column does: ascending, then descending, then the order of the table.
    void sortByNextOrder(int column);

    /// Makes every column as wide as its title and a sample of its values ask for, within limits.
    void fitColumns();

    /// Selects every row, unlike the base class in the selection of cases.
    void selectAll() override;

    /// Does nothing: a search would make the text of every row.
    void keyboardSearch(const QString& search) override;

    /// The place of the outlined row in the viewport; empty while the hovered case is not in sight.
    [[nodiscard]] QRect hoveredRowRect() const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void changeEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    using RangeMode = CaseTableSelection::RangeMode;

    /// The current cell and where it is on the screen, to be found there again after the rows have moved.
    struct Place
    {
        unsigned long long caseID = 0;
        int column = 0;
        std::optional<int> rowsBelowTop; ///< none while out of view
    };

    void press(const QMouseEvent& event);
    void dragTo(const QPoint& position);
    void endDrag();
    void scrollWhileDragging();
    bool moveByKey(const QKeyEvent& event);
    [[nodiscard]] std::optional<int> targetRow(int key) const;

    void onRowsChanged(CaseTableSelection::Origin origin);
    void bringSelectionIntoView();
    [[nodiscard]] bool isSelectionVisible() const;
    [[nodiscard]] int firstSelectedViewRow() const;
    void describeSelection();
    void hoveredCaseChanged();
    void showSorting();

    void rememberPlace();
    void restorePlace();
    void rememberWidths();
    void restoreWidths();
    [[nodiscard]] int fittingWidth(int column) const;
    void fitRows();

    void setCurrentViewRow(int viewRow, int column);
    void setAnchor(int viewRow);
    [[nodiscard]] int anchorViewRow(int otherwise) const;
    [[nodiscard]] QRect rowRect(std::optional<unsigned long long> caseID) const;
    [[nodiscard]] std::optional<int> viewRowOf(unsigned long long caseID) const;
    [[nodiscard]] int currentColumn() const;

    [[nodiscard]] int firstVisibleRow() const;
    [[nodiscard]] int fullRowsOnPage() const;
    [[nodiscard]] bool isRowVisible(int viewRow) const;
    void showRowAtEdge(int viewRow);
    void showRowInMiddle(int viewRow);

    CaseTableModel& m_model;
    CaseTableSelection& m_selection;
    boost::shared_ptr<HoveredCase> m_hovered;
    std::optional<unsigned long long> m_outlinedCase;
    std::unique_ptr<CellHover> m_hover;
    SignalConnectionCollection m_connections;

    bool m_followsSelection = true;
    bool m_showsSelectionLater = false; ///< when the widget itself is shown
    std::optional<unsigned long long>
        m_laterCase; ///< to be brought into view when the widget itself is shown

    std::optional<unsigned long long> m_anchorCase; ///< where a range with Shift begins
    bool m_isDragging = false;
    RangeMode m_dragMode = RangeMode::Replace;
    int m_dragViewRow = -1; ///< up to where the range under the mouse goes
    QPoint m_dragPosition;
    QBasicTimer m_dragScrollTimer;

    std::optional<Place> m_place;
    std::map<QString, int> m_widths; ///< by name of the column
};

} // namespace analyzer
