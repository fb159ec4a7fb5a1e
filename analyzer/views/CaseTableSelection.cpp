#include <analyzer/views/CaseTableSelection.h>

#include <QObject>

#include <boost/make_shared.hpp>

#include <algorithm>
#include <utility>

namespace analyzer {

/// Does not listen to the master as long as it lives.
class CaseTableSelection::WriteGuard
{
public:
    explicit WriteGuard(CaseTableSelection& selection)
        : m_selection(selection)
        , m_wasWriting(std::exchange(selection.m_isWriting, true))
    {
        m_selection.updateListening();
    }

    WriteGuard(const WriteGuard&) = delete;
    WriteGuard& operator=(const WriteGuard&) = delete;

    ~WriteGuard()
    {
        m_selection.m_isWriting = m_wasWriting;
        m_selection.updateListening();
    }

private:
    CaseTableSelection& m_selection;
    bool m_wasWriting;
};

CaseTableSelection::CaseTableSelection(
    CaseTableModel& model, boost::shared_ptr<SelectionModelInterface> master)
    : m_model(model)
    , m_master(std::move(master))
{
    m_modelReset = QObject::connect(&m_model, &QAbstractItemModel::modelReset, &m_model, [this] {
        show(*m_master->cases(), Origin::Table);
    });
    m_masterConnections.add(m_master->signalSelectionChanged.connect(
        [this](const CaseSelection& selection) { show(*selection, Origin::Master); }));
    m_rows = m_model.cases().rows(*m_master->cases(), m_unknown);
}

CaseTableSelection::~CaseTableSelection()
{
    QObject::disconnect(m_modelReset);
}

void CaseTableSelection::suspend()
{
    m_isSuspended = true;
    updateListening();
}

void CaseTableSelection::resume()
{
    m_isSuspended = false;
    updateListening();
    show(*m_master->cases(), Origin::Master);
}

void CaseTableSelection::selectOnly(int tableRow)
{
    RowBitmap rows(m_rows.rowCount());
    rows.set(static_cast<std::size_t>(tableRow));
    write(std::move(rows), false);
}

void CaseTableSelection::toggle(int tableRow)
{
    RowBitmap rows = committedRows();
    rows.set(
        static_cast<std::size_t>(tableRow), !rows.contains(static_cast<std::size_t>(tableRow)));
    write(std::move(rows), true);
}

void CaseTableSelection::selectRange(int viewFirst, int viewLast, RangeMode mode)
{
    write(rowsWithRange(committedRows(), viewFirst, viewLast, mode), mode != RangeMode::Replace);
}

void CaseTableSelection::selectAll()
{
    write(RowBitmap(m_rows.rowCount(), true), true);
}

void CaseTableSelection::clear()
{
    write(RowBitmap(m_rows.rowCount()), false);
}

void CaseTableSelection::invert()
{
    RowBitmap rows = committedRows();
    rows.invert();
    write(std::move(rows), true);
}

void CaseTableSelection::previewRange(int viewFirst, int viewLast, RangeMode mode)
{
    RowBitmap rows = rowsWithRange(committedRows(), viewFirst, viewLast, mode);
    if (m_preview) {
        m_preview->keepsUnknown = mode != RangeMode::Replace;
    } else {
        m_preview = Preview{m_rows, mode != RangeMode::Replace};
    }
    m_rows = std::move(rows);
    signalRowsChanged(Origin::Gesture);
}

void CaseTableSelection::commitPreview()
{
    if (m_preview) {
        write(m_rows, m_preview->keepsUnknown);
    }
}

void CaseTableSelection::cancelPreview()
{
    if (m_preview) {
        m_rows = std::move(m_preview->rowsBefore);
        m_preview.reset();
        signalRowsChanged(Origin::Gesture);
    }
}

RowBitmap CaseTableSelection::rowsWithRange(
    const RowBitmap& before, int viewFirst, int viewLast, RangeMode mode) const
{
    const bool keepsRows = mode == RangeMode::Add || mode == RangeMode::Remove;
    const bool value = mode != RangeMode::Remove;
    RowBitmap rows = keepsRows ? before : RowBitmap(before.rowCount());
    const auto [first, last] = std::minmax(viewFirst, viewLast);
    if (m_model.isInTableOrder()) {
        rows.setRange(static_cast<std::size_t>(first), static_cast<std::size_t>(last) + 1, value);
        return rows;
    }
    for (int viewRow = first; viewRow <= last; ++viewRow) {
        rows.set(static_cast<std::size_t>(m_model.tableRow(viewRow)), value);
    }
    return rows;
}

const RowBitmap& CaseTableSelection::committedRows() const
{
    return m_preview ? m_preview->rowsBefore : m_rows;
}

void CaseTableSelection::write(RowBitmap rows, bool keepUnknown)
{
    m_preview.reset();
    if (!keepUnknown) {
        m_unknown = {};
    } else if (m_isSuspended) {
        // What the master did meanwhile was not heard.
        static_cast<void>(m_model.cases().rows(*m_master->cases(), m_unknown));
    }
    m_rows = std::move(rows);
    try {
        const WriteGuard guard(*this);
        m_master->takeCases(
            boost::make_shared<const CaseSet>(m_model.cases().cases(m_rows, m_unknown)));
    } catch (...) {
        // Whether the master took the selection before somebody failed is for the master to say.
        show(*m_master->cases(), Origin::Master);
        throw;
    }
    signalRowsChanged(Origin::Gesture);
}

void CaseTableSelection::show(const CaseSet& cases, Origin origin)
{
    m_preview.reset();
    m_rows = m_model.cases().rows(cases, m_unknown);
    signalRowsChanged(origin);
}

void CaseTableSelection::updateListening()
{
    if (m_isSuspended || m_isWriting) {
        m_masterConnections.block();
    } else {
        m_masterConnections.unblock();
    }
}

} // namespace analyzer
