#include <analyzer/views/CaseTableIndex.h>
#include <analyzer/views/CaseTableOrder.h>

#include <dataviews/common/selection/CaseIDColumn.h>
#include <dataviews/common/selection/CaseIDMembership.h>

#include <dataviews/platform/pipeline/keepRows.h>
#include <dataviews/platform/property/ExceptionBase.h>

#include <string>
#include <utility>

namespace analyzer {

CaseTableIndex::CaseTableIndex(vtkSmartPointer<vtkIntArray> caseIDs)
    : m_caseIDs(std::move(caseIDs))
    , m_ids(m_caseIDs->GetPointer(0))
    , m_rowCount(static_cast<std::size_t>(m_caseIDs->GetNumberOfTuples()))
{
    bool ascends = true;
    for (std::size_t row = 0; row < m_rowCount; ++row) {
        if (m_ids[row] < 0) {
            throw ExceptionBase(
                "The case ID " + std::to_string(m_ids[row]) + " in row " + std::to_string(row)
                + " of the table is negative.");
        }
        m_isDense = m_isDense && m_ids[row] != 0 && caseID(row) - 1 == row;
        ascends = ascends && (row == 0 || m_ids[row - 1] <= m_ids[row]);
    }
    if (!ascends) {
        const CaseTableOrder order = CaseTableOrder::sorted(*m_caseIDs, Qt::AscendingOrder);
        m_rowsByID.reserve(m_rowCount);
        for (std::size_t place = 0; place < m_rowCount; ++place) {
            m_rowsByID.push_back(static_cast<std::size_t>(order.tableRow(static_cast<int>(place))));
        }
    }
}

std::optional<std::size_t> CaseTableIndex::row(unsigned long long caseID) const
{
    if (m_isDense) {
        return caseID >= 1 && caseID <= m_rowCount ? std::optional<std::size_t>(caseID - 1)
                                                   : std::nullopt;
    }
    const std::size_t place = firstPlaceFrom(caseID);
    if (place == m_rowCount || this->caseID(rowAt(place)) != caseID) {
        return std::nullopt;
    }
    return rowAt(place);
}

/// Of the rows by ascending ID, the first one whose ID is not below \p caseID.
std::size_t CaseTableIndex::firstPlaceFrom(unsigned long long caseID) const
{
    std::size_t begin = 0;
    std::size_t end = m_rowCount;
    while (begin < end) {
        const std::size_t middle = begin + (end - begin) / 2;
        if (this->caseID(rowAt(middle)) < caseID) {
            begin = middle + 1;
        } else {
            end = middle;
        }
    }
    return begin;
}

RowBitmap CaseTableIndex::rows(const CaseSet& cases, CaseSet& unknown) const
{
    constexpr std::size_t rowsPerSearch = 32; ///< that a pass looks at in the time of one search
    RowBitmap result(m_rowCount, !m_isDense && cases.size() > m_rowCount / rowsPerSearch);
    if (m_isDense) {
        cases.addTo(result.words(), 1);
        // The last word has room for cases behind the last row.
        result.intersect(RowBitmap(m_rowCount, true));
    } else if (result.count() > 0) {
        const CaseIDMembership membership = CaseIDMembership::of(cases);
        keepRows(result, [this, &membership](std::size_t row) {
            return membership.contains(static_cast<CaseIDMembership::Key>(m_ids[row]));
        });
    } else {
        cases.forEach([this, &result](CaseSet::ID id) {
            for (std::size_t place = firstPlaceFrom(id);
                 place < m_rowCount && caseID(rowAt(place)) == id;
                 ++place) {
                result.set(rowAt(place));
            }
        });
    }
    unknown = CaseSet::symmetricDifference(cases, this->cases(result, {}));
    return result;
}

CaseSet CaseTableIndex::cases(const RowBitmap& rows, const CaseSet& others) const
{
    if (m_isDense) {
        return CaseSet::united(CaseSet::ofBits(1, rows.words()), others);
    }
    std::vector<CaseIDMembership::Key> keys;
    keys.reserve(rows.count());
    rows.forEach([this, &keys](std::size_t row) {
        keys.push_back(static_cast<CaseIDMembership::Key>(m_ids[row]));
    });
    return CaseSet::united(CaseIDColumn::toCases(std::move(keys)), others);
}

} // namespace analyzer
