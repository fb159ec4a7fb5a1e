#pragma once

#include <analyzer/views/CaseTableModel.h>

#include <dataviews/platform/data/RowBitmap.h>
#include <dataviews/platform/selection/SelectionModelInterface.h>
#include <dataviews/platform/selection/SuspendableInterface.h>
#include <dataviews/platform/signals/Signal.h>
#include <dataviews/platform/signals/SignalConnectionCollection.h>

#include <QMetaObject>

#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <optional>

namespace analyzer {

/// The selected rows of a table of cases, kept in step with the selection that all views share (the master).
///
/// The rows are a bitmap by table row, so a gesture costs the same however scattered its rows are; Qt's selection
/// model is not involved. Every gesture writes the master once, and what the master reports of that write is not
/// listened to. The master may hold cases that this table does not have (it may be filtered): the description of
/// each gesture says whether it keeps them.
///
/// suspend() stops listening to the master; gestures still write it. resume() shows the master's selection anew.
class CaseTableSelection : public SuspendableInterface
{
public:
    /// Who changed the rows.
    enum class Origin
    {
        Gesture, ///< a member function of this class
        Master, ///< the master, or resume()
        Table ///< the model has another table
    };

    /// What a range of rows does.
    enum class RangeMode
    {
        Replace, ///< becomes the whole selection
        ReplaceShown, ///< becomes the selection of this table; cases that the table does not have are kept
        Add, ///< is added; everything else is kept
        Remove ///< is taken out; everything else is kept
    };

    /// Shows the selection of \p master. \p model outlives the selection.
    CaseTableSelection(CaseTableModel& model, boost::shared_ptr<SelectionModelInterface> master);
    CaseTableSelection(const CaseTableSelection&) = delete;
    CaseTableSelection& operator=(const CaseTableSelection&) = delete;
    ~CaseTableSelection() override;

    /// The rows changed; sent once per change, after the master was written.
    Signal<void(Origin), CaseTableSelection> signalRowsChanged;

    void suspend() override;
    void resume() override;

    // ---- the selected rows

    /// By table row, a preview included.
    [[nodiscard]] const RowBitmap& rows() const { return m_rows; }

    [[nodiscard]] std::size_t count() const { return m_rows.count(); }

    /// \p tableRow must exist.
    [[nodiscard]] bool contains(int tableRow) const
    {
        return m_rows.contains(static_cast<std::size_t>(tableRow));
    }

    // ---- gestures; an exception of the master's listeners passes through, and the rows are then the master's

    /// Makes the case in \p tableRow the whole selection.
    void selectOnly(int tableRow);

    /// Takes the case in \p tableRow in or out and keeps everything else.
    void toggle(int tableRow);

    /// The rows from \p viewFirst to \p viewLast as the view shows them, both included and in any order.
    void selectRange(int viewFirst, int viewLast, RangeMode mode);

    /// Adds every row; cases that the table does not have are kept.
    void selectAll();

    /// Empties the whole selection.
    void clear();

    /// Swaps the selected rows and the others; cases that the table does not have are kept.
    void invert();

    // ---- a range that is still growing

    /// Shows what selectRange() would do and leaves the master alone. Every preview starts from the rows as they
    /// were before the first one. A preview ends with commitPreview() and cancelPreview(), and without effect when
    /// the master or the table changes or another gesture comes.
    void previewRange(int viewFirst, int viewLast, RangeMode mode);

    /// Makes the rows of the preview the selection; nothing without a preview.
    void commitPreview();

    /// Shows the rows again as they were before the preview; nothing without a preview.
    void cancelPreview();

    [[nodiscard]] bool hasPreview() const { return m_preview.has_value(); }

private:
    struct Preview
    {
        RowBitmap rowsBefore;
        bool keepsUnknown = false;
    };
    class WriteGuard;

    [[nodiscard]] RowBitmap rowsWithRange(
        const RowBitmap& before, int viewFirst, int viewLast, RangeMode mode) const;
    [[nodiscard]] const RowBitmap& committedRows() const;

    void write(RowBitmap rows, bool keepUnknown);
    void show(const CaseSet& cases, Origin origin);
    void updateListening();

    CaseTableModel& m_model;
    boost::shared_ptr<SelectionModelInterface> m_master;
    RowBitmap m_rows;
    CaseSet m_unknown; ///< the master's cases that the table does not have
    std::optional<Preview> m_preview;
    bool m_isSuspended = false;
    bool m_isWriting = false;
    QMetaObject::Connection m_modelReset;
    SignalConnectionCollection m_masterConnections;
};

} // namespace analyzer
