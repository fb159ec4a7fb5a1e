#include <dataviews/platform/selection/SelectionModel.h>

#include <benchmark/benchmark.h>

#include <cstddef>

#include <benchmarks/support/caseTables.h>

using namespace caseTables;

namespace {

/// Half of the cases in place of another half.
void writeMaster(benchmark::State& state)
{
    const vtkIdType rowCount = state.range(0);
    const Cases choices[] = {
        scatteredCases(rowCount, rowCount / 2, 0), scatteredCases(rowCount, rowCount / 2, 1)};
    SelectionModel model;
    std::size_t turn = 0;
    for (auto _ : state) {
        model.setSelection(choices[turn++ % 2]);
    }
    state.SetItemsProcessed(state.iterations() * (rowCount / 2));
}

void readMaster(benchmark::State& state)
{
    const vtkIdType rowCount = state.range(0);
    SelectionModel model;
    model.setSelection(scatteredCases(rowCount, rowCount / 2));
    for (auto _ : state) {
        benchmark::DoNotOptimize(model.getSelections());
    }
    state.SetItemsProcessed(state.iterations() * (rowCount / 2));
}

BENCHMARK(writeMaster)
    ->Name("selection/write_master/ours")
    ->ArgName("rows")
    ->RangeMultiplier(10)
    ->Range(10000, 1000000)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(readMaster)
    ->Name("selection/read_master/ours")
    ->ArgName("rows")
    ->RangeMultiplier(10)
    ->Range(10000, 1000000)
    ->Unit(benchmark::kMicrosecond);

} // namespace
