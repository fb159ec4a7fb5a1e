#include <dataviews/common/images/CaseGrid.h>
#include <dataviews/common/images/GridSettings.h>
#include <dataviews/common/selection/CaseIDColumn.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/pipeline/boundVariable.h>
#include <dataviews/platform/selection/CaseSet.h>

#include <boost/make_shared.hpp>

#include <algorithm>
#include <utility>

namespace {

using Cell = CaseGrid::Cell;

std::pair<int, int> indices(const GridDimension& dimension, std::size_t row)
{
    if (dimension.isByTag()) {
        return {0, static_cast<int>(dimension.size())};
    }
    const auto index = static_cast<int>(dimension.indexOfRow(row));
    return {index, index + 1};
}

} // namespace

void CaseGrid::update(const GridSettings& settings, vtkTable* table)
{
    if (!isOfOpenStudy()) {
        forget();
    }
    const Project& project = Project::project();
    m_study = project.caseIDVariable();
    const bool hasCaseChange = m_cases.isOutdated(table);
    if (hasCaseChange) {
        m_cases.read(table, project);
    }
    updateDimensions(settings, hasCaseChange);
    updatePage(settings);
    if (!m_isGrouped) {
        m_grouping.group(m_cases, m_rows, m_columns);
        m_isGrouped = true;
    }
}

bool CaseGrid::isOfOpenStudy() const
{
    return m_study == Project::project().caseIDVariable();
}

void CaseGrid::forget()
{
    *this = CaseGrid();
}

void CaseGrid::updateDimensions(const GridSettings& settings, bool hasCaseChange)
{
    m_isGrouped = m_isGrouped && !hasCaseChange;
    const auto update =
        [&](GridDimension& dimension, GridSettings::By by, const WeakPtr<Variable>& variable) {
            const CodesPointer newCodes =
                by == GridSettings::By::ByVariable ? codes(variable) : CodesPointer();
            const bool hasOtherCodes = newCodes.get() != dimension.codes();
            m_isGrouped = m_isGrouped && !hasOtherCodes;
            if (by == GridSettings::By::ByTag) {
                dimension.setTags(settings.tags);
            } else if (!newCodes) {
                dimension.setEverything();
            } else if (hasOtherCodes || hasCaseChange) {
                dimension.setVariable(newCodes, m_cases);
            }
        };
    update(m_rows, settings.rowsBy, settings.rowVariable);
    update(m_columns, settings.columnsBy, settings.columnVariable);
}

void CaseGrid::updatePage(const GridSettings& settings)
{
    m_pageCodes.reset();
    m_pageCode.reset();
    if (settings.pagesBy == GridSettings::PageBy::ByVariable && !isDiagonal()) {
        m_pageCodes = codes(settings.pageVariable);
    }
    if (m_pageCodes) {
        m_pageCode = m_pageCodes->find(settings.pageValue);
    }
}

CaseGrid::CodesPointer CaseGrid::codes(const WeakPtr<Variable>& handle)
{
    // Those of rows, columns and pages, and some that the user may come back to.
    constexpr std::size_t maxKnown = 6;
    const boost::shared_ptr<Variable> variable = boundVariable(Project::project(), handle);
    if (!variable) {
        return {};
    }
    auto place = std::find_if(m_knownCodes.begin(), m_knownCodes.end(), [&](const auto& known) {
        return known->variable() == handle;
    });
    if (place == m_knownCodes.end()) {
        if (m_knownCodes.size() < maxKnown) {
            m_knownCodes.push_back(boost::make_shared<VariableCodes>());
        } else if (!m_knownCodes.back().unique()) {
            m_knownCodes.back() = boost::make_shared<VariableCodes>();
        }
        m_knownCodes.back()->assign(variable);
        place = m_knownCodes.end() - 1;
    }
    std::rotate(m_knownCodes.begin(), place, place + 1);
    return m_knownCodes.front();
}

void CaseGrid::checkCell(const Cell& cell) const
{
    m_rows.checkIndex(cell.first);
    m_columns.checkIndex(cell.second);
}

Cell CaseGrid::representative(const Cell& cell) const
{
    if (isDiagonal() && cell.first != cell.second) {
        return {0, 1};
    }
    return {m_rows.isByTag() ? 0 : cell.first, m_columns.isByTag() ? 0 : cell.second};
}

CaseGrouping::Rows CaseGrid::projectRows(const Cell& cell) const
{
    if (isDiagonal() && cell.first != cell.second) {
        return {};
    }
    const Cell group = representative(cell);
    return m_grouping.cases(
        static_cast<std::uint32_t>(group.first), static_cast<std::uint32_t>(group.second));
}

bool CaseGrid::holdsUnknownCases(const Cell& cell) const
{
    return isDiagonal() && cell.first == cell.second;
}

std::set<unsigned long long> CaseGrid::caseIDs(const Cell& cell) const
{
    // Gathered first: reads all over memory overlap as long as nothing is allocated between them.
    std::vector<unsigned long long> sorted;
    const CaseGrouping::Rows cases = projectRows(cell);
    sorted.reserve(cases.size());
    for (const CaseGrouping::Row row : cases) {
        if (isOnPage(row)) {
            sorted.push_back(m_cases.caseID(row));
        }
    }
    if (holdsUnknownCases(cell) && !m_cases.unknownIDs().empty()) {
        const auto known = static_cast<std::ptrdiff_t>(sorted.size());
        sorted.insert(sorted.end(), m_cases.unknownIDs().begin(), m_cases.unknownIDs().end());
        std::inplace_merge(sorted.begin(), sorted.begin() + known, sorted.end());
    }
    std::set<unsigned long long> ids;
    for (const unsigned long long id : sorted) {
        ids.emplace_hint(ids.end(), id);
    }
    return ids;
}

std::size_t CaseGrid::caseCount(const Cell& cell) const
{
    const CaseGrouping::Rows cases = projectRows(cell);
    if (!m_pageCodes) {
        return cases.size() + (holdsUnknownCases(cell) ? m_cases.unknownIDs().size() : 0);
    }
    return static_cast<std::size_t>(std::count_if(
        cases.begin(), cases.end(), [this](CaseGrouping::Row row) { return isOnPage(row); }));
}

CaseSet CaseGrid::casesOf(const std::vector<Cell>& cells) const
{
    const Project& project = Project::project();
    std::set<Cell> seen;
    RowBitmap rows(project.caseCount());
    bool hasUnknown = false;
    for (const Cell& cell : cells) {
        if (!seen.insert(representative(cell)).second) {
            continue;
        }
        hasUnknown = hasUnknown || holdsUnknownCases(cell);
        for (const CaseGrouping::Row row : projectRows(cell)) {
            if (isOnPage(row)) {
                rows.set(row);
            }
        }
    }
    std::vector<CaseIDMembership::Key> keys;
    keys.reserve(rows.count());
    rows.forEach([&](std::size_t row) {
        keys.push_back(static_cast<CaseIDMembership::Key>(project.caseID(row)));
    });
    CaseSet cases = CaseIDColumn::toCases(std::move(keys));
    return hasUnknown ? CaseSet::united(cases, CaseSet::ofSorted(m_cases.unknownIDs())) : cases;
}

std::vector<Cell> CaseGrid::cellsContainingAny(const CaseSet& cases) const
{
    std::vector<Cell> cells;
    if (isDiagonal()) {
        const bool isAny = cases.anyOf([this](CaseSet::ID caseID) { return isMember(caseID); });
        for (int tag = 0; isAny && tag < static_cast<int>(m_rows.size()); ++tag) {
            cells.emplace_back(tag, tag);
        }
        return cells;
    }
    const int rowTags = m_rows.isByTag() ? static_cast<int>(m_rows.size()) : 1;
    const int columnTags = m_columns.isByTag() ? static_cast<int>(m_columns.size()) : 1;
    const std::vector<Cell> groups = representativesOfAny(cases);
    for (int row = 0; row < rowTags; ++row) {
        for (const Cell& group : groups) {
            for (int column = 0; column < columnTags; ++column) {
                cells.emplace_back(group.first + row, group.second + column);
            }
        }
    }
    return cells;
}

/// For grids that are not diagonal.
std::vector<Cell> CaseGrid::representativesOfAny(const CaseSet& cases) const
{
    constexpr std::size_t largestMap = std::size_t(1) << 26; // cells; 8 MiB
    const Project& project = Project::project();
    const std::size_t columns = m_columns.isByTag() ? 1 : m_columns.size();
    const std::size_t cellCount = (m_rows.isByTag() ? 1 : m_rows.size()) * columns;
    const bool usesMap = cellCount <= largestMap;
    RowBitmap map(usesMap ? cellCount : 0);
    std::size_t unmarked = m_grouping.cells().size();
    std::vector<std::size_t> places;
    cases.anyOf([&](CaseSet::ID caseID) {
        const std::optional<std::size_t> row = project.row(caseID);
        if (!row || !m_cases.contains(*row) || !isOnPage(*row)) {
            return false;
        }
        const std::size_t place = m_rows.indexOfRow(*row) * columns + m_columns.indexOfRow(*row);
        if (!usesMap) {
            places.push_back(place);
        } else if (!map.contains(place)) {
            map.set(place);
            --unmarked;
        }
        return unmarked == 0; // of a million cases some thousands tell
    });
    map.forEach([&places](std::size_t place) { places.push_back(place); });
    std::sort(places.begin(), places.end());
    places.erase(std::unique(places.begin(), places.end()), places.end());
    std::vector<Cell> result;
    result.reserve(places.size());
    for (const std::size_t place : places) {
        result.emplace_back(static_cast<int>(place / columns), static_cast<int>(place % columns));
    }
    return result;
}

bool CaseGrid::isMember(unsigned long long caseID) const
{
    const std::optional<std::size_t> row = Project::project().row(caseID);
    const std::vector<unsigned long long>& unknown = m_cases.unknownIDs();
    return row ? m_cases.contains(*row)
               : std::binary_search(unknown.begin(), unknown.end(), caseID);
}

std::vector<Cell> CaseGrid::cellsContaining(unsigned long long caseID) const
{
    const std::optional<std::size_t> row = Project::project().row(caseID);
    std::vector<Cell> cells;
    if (isDiagonal()) {
        const bool holds = isMember(caseID);
        for (int tag = 0; holds && tag < static_cast<int>(m_rows.size()); ++tag) {
            cells.emplace_back(tag, tag);
        }
        return cells;
    }
    if (!row || !m_cases.contains(*row) || !isOnPage(*row)) {
        return cells;
    }
    const auto [firstRow, endRow] = indices(m_rows, *row);
    const auto [firstColumn, endColumn] = indices(m_columns, *row);
    for (int r = firstRow; r < endRow; ++r) {
        for (int c = firstColumn; c < endColumn; ++c) {
            cells.emplace_back(r, c);
        }
    }
    return cells;
}
