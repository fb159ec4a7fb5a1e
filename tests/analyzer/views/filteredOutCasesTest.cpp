#include <analyzer/views/filteredOutCases.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/pipeline/DataPipelineManager.h>
#include <dataviews/platform/pipeline/RangeFilter.h>

#include <vtkIntArray.h>

#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

#include <set>

#include <tests/support/SmallStudy.h>

namespace analyzer {

namespace {

using Cases = std::set<unsigned long long>;

boost::shared_ptr<RangeFilter> rangeFilter(double min, double max)
{
    return boost::make_shared<RangeFilter>(
        Project::project().variable("Speed"), ValueRange_s<double>{min, max});
}

void expectFilteredOut(const DataPipelineManagerInterface& pipeline, const Cases& expected)
{
    EXPECT_EQ(filteredOutCount(pipeline), expected.size());
    const RowBitmap rows = filteredOutRows(pipeline);
    EXPECT_EQ(rows.rowCount(), Project::project().caseCount());
    EXPECT_EQ(rows.count(), expected.size());
    EXPECT_EQ(caseIDs(rows), expected);
}

} // namespace

TEST(filteredOutCasesTest, AreThoseThatTheFiltersLeaveOut)
{
    SmallStudy study(6);
    study.add("Speed", {1, 5, 2, 6, 3, 7}).open();
    DataPipelineManager pipeline(Project::project());

    const struct
    {
        double min;
        double max;
        Cases leftOut;
    } ranges[] = {
        {0, 10, {}},
        {2, 6, {1, 6}},
        {1, 3, {2, 4, 6}},
        {5, 9, {1, 3, 5}},
        {20, 30, {1, 2, 3, 4, 5, 6}},
    };

    expectFilteredOut(pipeline, {});
    for (const auto& range : ranges) {
        SCOPED_TRACE(range.min);
        const auto filter = rangeFilter(range.min, range.max);
        pipeline.addFilter(filter);
        expectFilteredOut(pipeline, range.leftOut);
        pipeline.removeFilter(filter);
    }
}

TEST(filteredOutCasesTest, CaseIDsNeedNotCount)
{
    Project study;
    const auto ids = vtkSmartPointer<vtkIntArray>::New();
    for (const int id : {40, 7, 12}) {
        ids->InsertNextValue(id);
    }
    study.setCaseIDs(ids);
    const vtkNew<vtkDoubleArray> speed;
    speed->SetName("Speed");
    for (const double value : {1.0, 2.0, 3.0}) {
        speed->InsertNextValue(value);
    }
    study.addVariable(speed.Get(), Variable::Output);
    Project::project().replaceStudy(study);
    DataPipelineManager pipeline(Project::project());

    pipeline.addFilter(rangeFilter(2, 2));

    expectFilteredOut(pipeline, {12, 40});
    Project nothing;
    Project::project().replaceStudy(nothing);
    expectFilteredOut(pipeline, {});
}

} // namespace analyzer
