#pragma once

#include <dataviews/platform/data/RowBitmap.h>
#include <dataviews/platform/selection/CaseSet.h>

#include <vtkIntArray.h>
#include <vtkSmartPointer.h>

#include <cstddef>
#include <optional>
#include <vector>

namespace analyzer {

/// Translates between the case IDs of a table and its rows.
///
/// IDs from 1 to n in order are translated word by word, many others in a pass along the column, and a few are searched
/// for; only where the IDs do not ascend an order of the rows is built for that, once.
class CaseTableIndex
{
public:
    /// Of a table without rows.
    CaseTableIndex() = default;

    /// \p caseIDs has an ID for each row and does not change any more; of rows with the same ID, the first is
    /// found and all are selected.
    /// \throws ExceptionBase if an ID is negative.
    explicit CaseTableIndex(vtkSmartPointer<vtkIntArray> caseIDs);

    [[nodiscard]] std::size_t rowCount() const { return m_rowCount; }

    /// The ID in \p row, which must exist.
    [[nodiscard]] unsigned long long caseID(std::size_t row) const
    {
        return static_cast<unsigned long long>(m_ids[row]);
    }

    /// The row of \p caseID, if the table has it.
    [[nodiscard]] std::optional<std::size_t> row(unsigned long long caseID) const;

    /// The rows of \p cases. The cases that the table does not have are put into \p unknown, in place of what is there.
    [[nodiscard]] RowBitmap rows(const CaseSet& cases, CaseSet& unknown) const;

    /// The cases in \p rows together with \p others.
    [[nodiscard]] CaseSet cases(const RowBitmap& rows, const CaseSet& others) const;

private:
    [[nodiscard]] std::size_t firstPlaceFrom(unsigned long long caseID) const;

    [[nodiscard]] std::size_t rowAt(std::size_t place) const
    {
        return m_rowsByID.empty() ? place : m_rowsByID[place];
    }

    vtkSmartPointer<vtkIntArray> m_caseIDs;
    const int* m_ids = nullptr;
    std::size_t m_rowCount = 0;
    bool m_isDense = true;
    std::vector<std::size_t> m_rowsByID; ///< empty where the IDs ascend with the rows
};

} // namespace analyzer
