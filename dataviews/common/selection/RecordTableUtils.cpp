#include <dataviews/common/selection/CaseIDColumn.h>
#include <dataviews/common/selection/RecordTableUtils.h>

#include <vtkAbstractArray.h>
#include <vtkTable.h>

#include <utility>
#include <vector>

std::set<unsigned long long> RecordTableUtils::caseIDs(vtkTable& table)
{
    if (table.GetNumberOfRows() == 0) {
        return {};
    }
    std::vector<CaseIDMembership::Key> keys;
    CaseIDColumn(*table.GetColumn(0)).appendKeys(keys);
    return CaseIDColumn::toCaseIDs(std::move(keys));
}

unsigned long long RecordTableUtils::caseIDAtRow(vtkTable& table, long long row)
{
    return CaseIDColumn(*table.GetColumn(0)).caseID(row);
}
