#include <analyzer/views/CaseTableIndex.h>
#include <analyzer/views/CaseTableOrder.h>

#include <dataviews/platform/property/ExceptionBase.h>

#include <algorithm>
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
    if (begin == m_rowCount || this->caseID(rowAt(begin)) != caseID) {
        return std::nullopt;
    }
    return rowAt(begin);
}

RowBitmap CaseTableIndex::rows(
    const std::set<unsigned long long>& cases, std::vector<unsigned long long>& unknown) const
{
    RowBitmap result(m_rowCount);
    unknown.clear();
    if (m_isDense) {
        for (const unsigned long long id : cases) {
            if (id >= 1 && id <= m_rowCount) {
                result.set(static_cast<std::size_t>(id - 1));
            } else {
                unknown.push_back(id);
            }
        }
        return result;
    }
    // Both ascend, so one walk along both is enough.
    std::size_t place = 0;
    for (const unsigned long long id : cases) {
        while (place < m_rowCount && caseID(rowAt(place)) < id) {
            ++place;
        }
        if (place == m_rowCount || caseID(rowAt(place)) != id) {
            unknown.push_back(id);
        }
        for (; place < m_rowCount && caseID(rowAt(place)) == id; ++place) {
            result.set(rowAt(place));
        }
    }
    return result;
}

std::set<unsigned long long> CaseTableIndex::cases(
    const RowBitmap& rows, const std::vector<unsigned long long>& others) const
{
    std::vector<unsigned long long> ids;
    ids.reserve(rows.count() + others.size());
    rows.forEach([this, &ids](std::size_t row) { ids.push_back(caseID(row)); });
    if (!m_rowsByID.empty()) {
        std::sort(ids.begin(), ids.end());
    }
    const auto ownCount = static_cast<std::ptrdiff_t>(ids.size());
    ids.insert(ids.end(), others.begin(), others.end());
    std::inplace_merge(ids.begin(), ids.begin() + ownCount, ids.end());
    // An ascending range is what a set is built from in linear time.
    return {ids.begin(), ids.end()};
}

} // namespace analyzer
