#pragma once

#include <Qt>

#include <atomic>
#include <cstddef>
#include <vector>

class vtkAbstractArray;

namespace analyzer {

/// The order in which a view shows the rows of a table: a permutation and its inverse.
class CaseTableOrder
{
public:
    /// The order of the table itself.
    CaseTableOrder() = default;

    /// Sorts by \p column, a vtkIntArray, vtkDoubleArray or vtkStringArray with one component.
    ///
    /// Numbers by value, texts by their UTF-8 bytes. Rows with equal values keep the order of the table, and missing
    /// values (NaN, the empty text) come last, both in ascending and in descending order. Reads the column only, so
    /// any thread may call it while nobody writes the column. Returns soon after \p cancelled, if given, becomes
    /// true; the result is then of no use.
    [[nodiscard]] static CaseTableOrder sorted(
        vtkAbstractArray& column,
        Qt::SortOrder order,
        const std::atomic<bool>* cancelled = nullptr);

    /// Whether this is the order of the table itself.
    [[nodiscard]] bool isTableOrder() const { return m_tableRows.empty(); }

    /// The row of the table that is shown in \p viewRow, which must exist.
    [[nodiscard]] int tableRow(int viewRow) const
    {
        return isTableOrder() ? viewRow : m_tableRows[static_cast<std::size_t>(viewRow)];
    }

    /// Where \p tableRow, which must exist, is shown.
    [[nodiscard]] int viewRow(int tableRow) const
    {
        return isTableOrder() ? tableRow : m_viewRows[static_cast<std::size_t>(tableRow)];
    }

private:
    std::vector<int> m_tableRows; ///< by view row; empty for the order of the table
    std::vector<int> m_viewRows; ///< by table row
};

} // namespace analyzer
