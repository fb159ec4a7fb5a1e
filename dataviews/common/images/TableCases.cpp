#include <dataviews/common/images/TableCases.h>
#include <dataviews/common/selection/CaseIDColumn.h>

#include <dataviews/platform/data/Project.h>

#include <vtkAbstractArray.h>
#include <vtkTable.h>

#include <algorithm>
#include <optional>

namespace {

using Key = CaseIDMembership::Key;

vtkAbstractArray* idColumn(vtkTable* table)
{
    return table != nullptr ? table->GetColumn(0) : nullptr;
}

unsigned long long widened(Key key)
{
    return static_cast<unsigned long long>(static_cast<long long>(static_cast<int>(key)));
}

/// Finds the rows of a project for IDs that mostly come in its own order.
class RowFinder
{
public:
    RowFinder(const std::vector<Key>& projectKeys, const Project& project)
        : m_keys(projectKeys)
        , m_project(project)
    {}

    std::optional<std::size_t> row(Key key)
    {
        // A filtered table leaves out some cases: a short search is cheaper than the project's.
        constexpr std::size_t lookAhead = 8;
        const std::size_t end = std::min(m_next + lookAhead, m_keys.size());
        for (std::size_t candidate = m_next; candidate < end; ++candidate) {
            if (m_keys[candidate] == key) {
                m_next = candidate + 1;
                return candidate;
            }
        }
        const std::optional<std::size_t> found = m_project.row(widened(key));
        m_next = found ? *found + 1 : m_next;
        return found;
    }

private:
    const std::vector<Key>& m_keys;
    const Project& m_project;
    std::size_t m_next = 0;
};

} // namespace

bool TableCases::isOutdated(vtkTable* table) const
{
    vtkAbstractArray* const column = idColumn(table);
    return !m_isRead || m_column != column
        || (column != nullptr && m_columnTime != column->GetMTime());
}

void TableCases::read(vtkTable* table, const Project& project)
{
    if (!m_isStudyKnown) {
        readProject(project);
    }
    m_column = idColumn(table);
    m_columnTime = m_column != nullptr ? m_column->GetMTime() : 0;
    m_isRead = true;
    m_unknownIDs.clear();
    if (m_column == nullptr) {
        m_members = RowBitmap(project.caseCount());
    } else if (m_column == project.table().GetColumn(0)) {
        m_members = RowBitmap(project.caseCount(), true);
    } else {
        markMembers(*m_column, project);
    }
    listMembers();
}

void TableCases::readProject(const Project& project)
{
    m_projectKeys.clear();
    CaseIDColumn(*project.table().GetColumn(0)).appendKeys(m_projectKeys);
    m_firstKey = m_projectKeys.empty() ? 0 : m_projectKeys.front();
    const auto isGap = [](Key left, Key right) { return right != left + 1; };
    m_isDense = std::adjacent_find(m_projectKeys.begin(), m_projectKeys.end(), isGap)
        == m_projectKeys.end();
    sortProjectRows();
    m_isStudyKnown = true;
}

void TableCases::sortProjectRows()
{
    const std::vector<Key>& keys = m_projectKeys;
    m_projectRows.clear();
    if (std::is_sorted(keys.begin(), keys.end())) {
        return;
    }
    std::vector<std::uint64_t> keysAndRows(keys.size());
    for (std::size_t row = 0; row < keys.size(); ++row) {
        keysAndRows[row] = (std::uint64_t(keys[row]) << 32U) | row;
    }
    std::sort(keysAndRows.begin(), keysAndRows.end());
    m_projectRows.resize(keys.size());
    std::transform(
        keysAndRows.begin(), keysAndRows.end(), m_projectRows.begin(), [](std::uint64_t both) {
            return static_cast<Row>(both);
        });
}

void TableCases::markMembers(vtkAbstractArray& column, const Project& project)
{
    m_members = RowBitmap(project.caseCount());
    std::vector<Key> keys;
    CaseIDColumn(column).appendKeys(keys);
    RowFinder finder(m_projectKeys, project);
    for (const Key key : keys) {
        if (const std::optional<std::size_t> row = finder.row(key)) {
            m_members.set(*row);
        } else {
            m_unknownIDs.push_back(widened(key));
        }
    }
    std::sort(m_unknownIDs.begin(), m_unknownIDs.end());
    m_unknownIDs.erase(std::unique(m_unknownIDs.begin(), m_unknownIDs.end()), m_unknownIDs.end());
}

void TableCases::listMembers()
{
    m_rows.clear();
    m_size = m_members.count();
    const bool isInOrder = m_projectRows.empty();
    m_areAllInOrder = isInOrder && m_size == m_members.rowCount();
    if (m_areAllInOrder) {
        return;
    }
    m_rows.reserve(m_size);
    if (isInOrder) {
        m_members.forEach([this](std::size_t row) { m_rows.push_back(static_cast<Row>(row)); });
        return;
    }
    for (const Row row : m_projectRows) {
        if (m_members.contains(row)) {
            m_rows.push_back(row);
        }
    }
}
