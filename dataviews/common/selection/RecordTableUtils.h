#pragma once

#include <dataviews/common/selection/SelectionExport.h>

#include <set>

class vtkTable;

/// Reads case IDs out of a record table, a table whose rows are cases and whose column 0 holds their IDs.
///
/// IDs pass through a signed 32-bit integer and are widened with their sign; see CaseIDColumn.
class DATAVIEWS_SELECTION_EXPORT RecordTableUtils
{
public:
    RecordTableUtils() = delete;

    /// The IDs of all rows, each once; none for a table without rows.
    [[nodiscard]] static std::set<unsigned long long> caseIDs(vtkTable& table);

    /// The ID of the case in \p row, which must exist.
    [[nodiscard]] static unsigned long long caseIDAtRow(vtkTable& table, long long row);
};
