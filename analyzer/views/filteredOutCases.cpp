#include <analyzer/views/filteredOutCases.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/pipeline/DataPipelineManagerInterface.h>

#include <QtGlobal>

#include <vtkIntArray.h>
#include <vtkTable.h>
#include <vtkTableAlgorithm.h>

#include <algorithm>
#include <vector>

namespace analyzer {

namespace {

/// The column of IDs of a table of cases; null for a table without columns.
vtkIntArray* caseIDColumn(vtkTable* table)
{
    return table == nullptr ? nullptr : vtkIntArray::SafeDownCast(table->GetColumn(0));
}

std::size_t valueCount(vtkIntArray* column)
{
    return column == nullptr ? 0 : static_cast<std::size_t>(column->GetNumberOfTuples());
}

} // namespace

std::size_t filteredOutCount(const DataPipelineManagerInterface& pipeline)
{
    pipeline.output().Update();
    const std::size_t all = Project::project().caseCount();
    return all - std::min(all, valueCount(caseIDColumn(pipeline.output().GetOutput())));
}

std::vector<LeftOutCases> filteredOut(const DataPipelineManagerInterface& pipeline)
{
    const std::size_t count = filteredOutCount(pipeline);
    return count == 0 ? std::vector<LeftOutCases>()
                      : std::vector<LeftOutCases>{{count, "filtered"}};
}

RowBitmap filteredOutRows(const DataPipelineManagerInterface& pipeline)
{
    const Project& project = Project::project();
    RowBitmap left(project.caseCount());
    pipeline.output().Update();
    vtkIntArray* passing = caseIDColumn(pipeline.output().GetOutput());
    const std::size_t passingCount = valueCount(passing);
    if (passingCount == project.caseCount()) {
        return left;
    }
    const int* passingIDs = passing == nullptr ? nullptr : passing->GetPointer(0);
    const int* allIDs = caseIDColumn(&project.table())->GetPointer(0);
    // What passes is in the order of the study, so one walk along both is enough.
    std::size_t next = 0;
    for (std::size_t row = 0; row < left.rowCount(); ++row) {
        if (next < passingCount && passingIDs[next] == allIDs[row]) {
            ++next;
        } else {
            left.set(row);
        }
    }
    Q_ASSERT_X(next == passingCount, "filteredOutRows", "the pipeline is of another study");
    return left;
}

std::set<unsigned long long> caseIDs(const RowBitmap& rows)
{
    const Project& project = Project::project();
    Q_ASSERT_X(rows.rowCount() == project.caseCount(), "caseIDs", "the rows are of another study");
    std::vector<unsigned long long> ids;
    ids.reserve(rows.count());
    if (vtkIntArray* column = caseIDColumn(&project.table())) {
        const int* allIDs = column->GetPointer(0);
        rows.forEach(
            [&](std::size_t row) { ids.push_back(static_cast<unsigned long long>(allIDs[row])); });
    }
    // From an ascending range, as IDs mostly are, a set is built in linear time.
    return {ids.begin(), ids.end()};
}

} // namespace analyzer
