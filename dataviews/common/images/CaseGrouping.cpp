#include <dataviews/common/images/CaseGrouping.h>
#include <dataviews/common/images/GridDimension.h>

#include <algorithm>
#include <tuple>
#include <utility>

namespace {

using Row = CaseGrouping::Row;

/// Stands for the codes of a dimension that does not divide the cases.
struct NoCodes
{
    VariableCodes::Code operator[](std::size_t) const { return 0; }
};

template <class Function>
void withCodes(const GridDimension& dimension, Function function)
{
    if (dimension.codes() != nullptr) {
        dimension.codes()->withCodes(function);
    } else {
        function(NoCodes());
    }
}

std::size_t codeCount(const GridDimension& dimension)
{
    return dimension.codes() != nullptr ? dimension.codes()->valueCount() : 1;
}

std::size_t headerCount(const GridDimension& dimension)
{
    return dimension.codes() != nullptr ? dimension.headerCodes().size() : 1;
}

VariableCodes::Code headerCode(const GridDimension& dimension, std::size_t index)
{
    return dimension.codes() != nullptr ? dimension.headerCodes()[index] : 0;
}

template <class Function>
void forEachRow(const TableCases& cases, Function function)
{
    if (cases.areAllInOrder()) {
        const auto end = static_cast<Row>(cases.size());
        for (Row row = 0; row < end; ++row) {
            function(row);
        }
    } else {
        for (const Row row : cases.rows()) {
            function(row);
        }
    }
}

/// Makes places of counts: of each group where it begins.
void sumUp(std::vector<std::uint32_t>& counts)
{
    std::uint32_t begin = 0;
    for (std::uint32_t& count : counts) {
        const std::uint32_t end = begin + count;
        count = begin;
        begin = end;
    }
}

} // namespace

void CaseGrouping::group(
    const TableCases& cases, const GridDimension& rows, const GridDimension& columns)
{
    constexpr std::size_t alwaysSmall = 4096;
    m_cells.clear();
    m_rows.resize(cases.size());
    if (codeCount(rows) * codeCount(columns) <= std::max(alwaysSmall, cases.size())) {
        groupByCounting(cases, rows, columns);
    } else {
        groupBySorting(cases, rows, columns);
    }
}

void CaseGrouping::groupByCounting(
    const TableCases& cases, const GridDimension& rows, const GridDimension& columns)
{
    const std::size_t columnCodes = codeCount(columns);
    m_counts.assign(codeCount(rows) * columnCodes, 0);
    std::uint32_t* const counts = m_counts.data();
    Row* const places = m_rows.data();
    withCodes(rows, [&](const auto rowCodes) {
        withCodes(columns, [&](const auto colCodes) {
            forEachRow(
                cases, [=](Row row) { ++counts[rowCodes[row] * columnCodes + colCodes[row]]; });
            std::uint32_t begin = 0;
            for (std::size_t r = 0; r < headerCount(rows); ++r) {
                for (std::size_t c = 0; c < headerCount(columns); ++c) {
                    std::uint32_t& count =
                        counts[headerCode(rows, r) * columnCodes + headerCode(columns, c)];
                    if (count != 0) {
                        m_cells.push_back(
                            {static_cast<std::uint32_t>(r), static_cast<std::uint32_t>(c), begin});
                    }
                    begin += std::exchange(count, begin);
                }
            }
            forEachRow(cases, [=](Row row) {
                places[counts[rowCodes[row] * columnCodes + colCodes[row]]++] = row;
            });
        });
    });
}

void CaseGrouping::groupBySorting(
    const TableCases& cases, const GridDimension& rows, const GridDimension& columns)
{
    // By columns first, then by rows without changing the order within a row.
    std::vector<Row> byColumn(cases.size());
    m_counts.assign(headerCount(columns), 0);
    forEachRow(cases, [&](Row row) { ++m_counts[columns.indexOfRow(row)]; });
    sumUp(m_counts);
    forEachRow(cases, [&](Row row) { byColumn[m_counts[columns.indexOfRow(row)]++] = row; });
    m_counts.assign(headerCount(rows), 0);
    forEachRow(cases, [&](Row row) { ++m_counts[rows.indexOfRow(row)]; });
    sumUp(m_counts);
    for (const Row row : byColumn) {
        m_rows[m_counts[rows.indexOfRow(row)]++] = row;
    }
    for (std::size_t place = 0; place < m_rows.size(); ++place) {
        const std::uint32_t row = rows.indexOfRow(m_rows[place]);
        const std::uint32_t column = columns.indexOfRow(m_rows[place]);
        if (place == 0 || m_cells.back().row != row || m_cells.back().column != column) {
            m_cells.push_back({row, column, static_cast<std::uint32_t>(place)});
        }
    }
}

CaseGrouping::Rows CaseGrouping::cases(std::size_t index) const
{
    const std::size_t end = index + 1 < m_cells.size() ? m_cells[index + 1].begin : m_rows.size();
    return {m_rows.data() + m_cells[index].begin, m_rows.data() + end};
}

CaseGrouping::Rows CaseGrouping::cases(std::uint32_t row, std::uint32_t column) const
{
    const auto place = std::lower_bound(
        m_cells.begin(),
        m_cells.end(),
        std::make_tuple(row, column),
        [](const Cell& cell, const std::tuple<std::uint32_t, std::uint32_t>& wanted) {
            return std::tie(cell.row, cell.column) < wanted;
        });
    const bool isThere = place != m_cells.end() && place->row == row && place->column == column;
    return isThere ? cases(static_cast<std::size_t>(place - m_cells.begin())) : Rows();
}
