#pragma once

#include <dataviews/common/images/TableCases.h>

#include <cstddef>
#include <cstdint>
#include <vector>

class GridDimension;

/// Cases, sorted by the cells of a grid to which their values belong.
///
/// Dimensions without values count as one row or column here. Memory grows with cases, rows and columns, never with their
/// product. Arrays are kept for the next grouping.
class CaseGrouping
{
public:
    using Row = TableCases::Row;

    /// The rows of the project that belong to one cell, in ascending order of their IDs.
    struct Rows
    {
        [[nodiscard]] const Row* begin() const { return first; }

        [[nodiscard]] const Row* end() const { return behind; }

        [[nodiscard]] std::size_t size() const { return static_cast<std::size_t>(behind - first); }

        const Row* first = nullptr;
        const Row* behind = nullptr;
    };

    /// A cell with at least one case.
    struct Cell
    {
        std::uint32_t row;
        std::uint32_t column;
        std::uint32_t begin; ///< place of its first case
    };

    void group(const TableCases& cases, const GridDimension& rows, const GridDimension& columns);

    /// The cells with cases, row by row.
    [[nodiscard]] const std::vector<Cell>& cells() const { return m_cells; }

    /// The cases of cells()[\p index].
    [[nodiscard]] Rows cases(std::size_t index) const;

    /// The cases of the cell in \p row and \p column; may be none.
    [[nodiscard]] Rows cases(std::uint32_t row, std::uint32_t column) const;

private:
    void groupByCounting(
        const TableCases& cases, const GridDimension& rows, const GridDimension& columns);
    void groupBySorting(
        const TableCases& cases, const GridDimension& rows, const GridDimension& columns);

    std::vector<Row> m_rows; ///< of the project, cell after cell
    std::vector<Cell> m_cells;
    std::vector<std::uint32_t> m_counts;
};
