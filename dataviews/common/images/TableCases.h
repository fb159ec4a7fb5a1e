#pragma once

#include <dataviews/platform/data/RowBitmap.h>

#include <vtkSmartPointer.h>
#include <vtkType.h>

#include <cstddef>
#include <cstdint>
#include <vector>

class Project;
class vtkAbstractArray;
class vtkTable;

/// Which cases of a project a table holds, in ascending order of their IDs.
class TableCases
{
public:
    /// A row of the project.
    using Row = std::uint32_t;

    /// Reads the case IDs in column 0 of \p table, each case once; no table and no column hold none. \p project has the
    /// same study at every call.
    void read(vtkTable* table, const Project& project);

    /// Whether \p table has other case IDs than the one that was read last, as far as column and time stamp tell.
    [[nodiscard]] bool isOutdated(vtkTable* table) const;

    /// Makes whatever was read outdated.
    void forgetTable() { m_isRead = false; }

    /// Whether these are all rows of the project and their IDs ascend: rows() is empty then.
    [[nodiscard]] bool areAllInOrder() const { return m_areAllInOrder; }

    [[nodiscard]] const std::vector<Row>& rows() const { return m_rows; }

    [[nodiscard]] std::size_t size() const { return m_size; }

    /// Whether the table holds the case in \p row of the project.
    [[nodiscard]] bool contains(std::size_t row) const
    {
        return m_size == m_members.rowCount() || m_members.contains(row);
    }

    /// The ID of the case in \p row of the project.
    [[nodiscard]] unsigned long long caseID(std::size_t row) const
    {
        const std::uint32_t key =
            m_isDense ? m_firstKey + static_cast<std::uint32_t>(row) : m_projectKeys[row];
        return static_cast<unsigned long long>(static_cast<long long>(static_cast<int>(key)));
    }

    /// The IDs that the project does not know, ascending.
    [[nodiscard]] const std::vector<unsigned long long>& unknownIDs() const { return m_unknownIDs; }

private:
    void readProject(const Project& project);
    void sortProjectRows();
    void markMembers(vtkAbstractArray& column, const Project& project);
    void listMembers();

    vtkSmartPointer<vtkAbstractArray>
        m_column; ///< that was read; kept so that its address stays its own
    vtkMTimeType m_columnTime = 0;
    bool m_isRead = false;
    std::vector<std::uint32_t> m_projectKeys; ///< the IDs of the project, by row
    std::uint32_t m_firstKey = 0;
    bool m_isDense = false; ///< the IDs go up by one from row to row
    std::vector<Row> m_projectRows; ///< by ID; empty if the IDs ascend
    bool m_isStudyKnown = false;
    RowBitmap m_members;
    std::size_t m_size = 0;
    bool m_areAllInOrder = false;
    std::vector<Row> m_rows;
    std::vector<unsigned long long> m_unknownIDs;
};
