#include <analyzer/views/selectedRows.h>

#include <dataviews/common/selection/CaseIDIndex.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/selection/CaseSet.h>

#include <vtkAbstractArray.h>
#include <vtkTable.h>

namespace analyzer {

RowBitmap selectedRows(const Project& project, const CaseSet& cases)
{
    RowBitmap rows(project.caseCount());
    if (vtkAbstractArray* caseIDs = project.table().GetColumn(0)) {
        CaseIDIndex::of(*caseIDs)->addRowsTo(rows.words(), cases);
    }
    return rows;
}

} // namespace analyzer
