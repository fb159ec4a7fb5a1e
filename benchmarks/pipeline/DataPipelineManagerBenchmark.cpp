#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/pipeline/DataPipelineManager.h>
#include <dataviews/platform/pipeline/RangeFilter.h>

#include <vtkTable.h>
#include <vtkTableAlgorithm.h>

#include <boost/make_shared.hpp>

#include <benchmark/benchmark.h>

#include <memory>

#include <benchmarks/support/caseTables.h>

using namespace caseTables;

namespace {

/// A study of two variables with a range filter on one.
struct FilteredStudy
{
    explicit FilteredStudy(vtkIdType caseCount)
    {
        const vtkSmartPointer<vtkTable> table = recordTable(caseCount, IDOrder::Ascending);
        project.setCaseCount(static_cast<std::size_t>(caseCount));
        const WeakPtr<Variable> x = project.addVariable(table->GetColumn(1), Variable::Input);
        project.addVariable(table->GetColumn(2), Variable::Output);
        filter = boost::make_shared<RangeFilter>(x, ValueRange_s<double>{0.25, 0.75});
        manager = std::make_unique<DataPipelineManager>(project);
        manager->addFilter(filter);
    }

    /// Another range at each call; half of the cases pass.
    void moveRange()
    {
        low = low == 0.25 ? 0.3 : 0.25;
        filter->setRange({low, low + 0.5});
    }

    Project project;
    boost::shared_ptr<RangeFilter> filter;
    std::unique_ptr<DataPipelineManager> manager;
    double low = 0.25;
};

/// One end of a range filter moved, up to the rows that pass.
void passingRows(benchmark::State& state)
{
    FilteredStudy study(state.range(0));
    for (auto _ : state) {
        study.moveRange();
        benchmark::DoNotOptimize(study.manager->passingRows());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

/// The same up to the table that views get.
void output(benchmark::State& state)
{
    FilteredStudy study(state.range(0));
    for (auto _ : state) {
        study.moveRange();
        study.manager->output().Update();
        benchmark::DoNotOptimize(study.manager->output().GetOutput());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

BENCHMARK(passingRows)
    ->Name("filters/passing_rows/ours")
    ->ArgName("cases")
    ->RangeMultiplier(10)
    ->Range(10000, 1000000)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(output)
    ->Name("filters/output/ours")
    ->ArgName("cases")
    ->RangeMultiplier(10)
    ->Range(10000, 1000000)
    ->Unit(benchmark::kMicrosecond);

} // namespace
