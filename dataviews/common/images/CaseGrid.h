#pragma once

#include <dataviews/common/images/CaseGrouping.h>
#include <dataviews/common/images/GridDimension.h>
#include <dataviews/common/images/TableCases.h>
#include <dataviews/common/images/VariableCodes.h>

#include <dataviews/platform/data/WeakPtr.h>

#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <optional>
#include <set>
#include <utility>
#include <vector>

class CaseSet;
class Variable;
class vtkTable;
struct GridSettings;

/// The cases of a table in the cells of a grid, as settings say.
///
/// update() does what the settings and the table make necessary and no more: another page value costs a look-up, another row
/// variable one pass over its column and two over all cases. Must be brought up to date before it is asked, and after
/// the study was replaced.
class CaseGrid
{
public:
    /// Row and column, from 0.
    using Cell = std::pair<int, int>;

    /// Takes over \p settings and the cases of \p table (may be null), whose values the open project knows.
    void update(const GridSettings& settings, vtkTable* table);

    /// Whether what is here belongs to the open study.
    [[nodiscard]] bool isOfOpenStudy() const;

    /// The next update() reads the table again.
    void forgetTable() { m_cases.forgetTable(); }

    /// Lets go of everything about the study.
    void forget();

    [[nodiscard]] const GridDimension& rows() const { return m_rows; }

    [[nodiscard]] const GridDimension& columns() const { return m_columns; }

    /// Whether rows and columns are both by tag, so that only cells with the same index twice hold cases.
    [[nodiscard]] bool isDiagonal() const { return m_rows.isByTag() && m_columns.isByTag(); }

    /// \throws std::out_of_range ("invalid vector<T> subscript") for a cell outside the grid.
    void checkCell(const Cell& cell) const;

    /// The first of the cells with the cases of \p cell: the same one wherever a dimension is by tag.
    [[nodiscard]] Cell representative(const Cell& cell) const;

    [[nodiscard]] std::set<unsigned long long> caseIDs(const Cell& cell) const;
    [[nodiscard]] std::size_t caseCount(const Cell& cell) const;
    [[nodiscard]] std::vector<Cell> cellsContaining(unsigned long long caseID) const;

    /// The cases of all \p cells, in one pass over them.
    [[nodiscard]] CaseSet casesOf(const std::vector<Cell>& cells) const;

    /// Every cell that holds one of the cases, each once, row by row.
    [[nodiscard]] std::vector<Cell> cellsContainingAny(const CaseSet& cases) const;

    /// The rows of the project that belong to \p cell, those on other pages included. Cases that the project does
    /// not know have none.
    [[nodiscard]] CaseGrouping::Rows projectRows(const Cell& cell) const;

    /// Whether the case in \p row of the project is on the page.
    [[nodiscard]] bool isOnPage(std::size_t row) const
    {
        return !m_pageCodes || (m_pageCode && m_pageCodes->code(row) == *m_pageCode);
    }

    /// Rows and columns by tag counted as one each.
    [[nodiscard]] const CaseGrouping& grouping() const { return m_grouping; }

private:
    using CodesPointer = boost::shared_ptr<const VariableCodes>;

    CodesPointer codes(const WeakPtr<Variable>& handle);
    void updateDimensions(const GridSettings& settings, bool hasCaseChange);
    void updatePage(const GridSettings& settings);
    [[nodiscard]] bool holdsUnknownCases(const Cell& cell) const;

    /// Whether the table holds the case, whatever its page.
    [[nodiscard]] bool isMember(unsigned long long caseID) const;
    [[nodiscard]] std::vector<Cell> representativesOfAny(const CaseSet& cases) const;

    WeakPtr<Variable> m_study; ///< the variable of case IDs, of which each study has its own
    std::vector<boost::shared_ptr<VariableCodes>> m_knownCodes; ///< lately used ones first
    TableCases m_cases;
    GridDimension m_rows;
    GridDimension m_columns;
    CodesPointer m_pageCodes; ///< null if the page is no condition on cases
    std::optional<VariableCodes::Code> m_pageCode;
    CaseGrouping m_grouping;
    bool m_isGrouped = false;
};
