#include <dataviews/platform/selection/SelectionModel.h>

#include <benchmark/benchmark.h>

#include <cstddef>

#include <benchmarks/support/caseTables.h>

using namespace caseTables;

namespace {

/// Half of the cases in place of another half.
void BM_SelectionModel_setSelection(benchmark::State& state)
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

void BM_SelectionModel_getSelections(benchmark::State& state)
{
    const vtkIdType rowCount = state.range(0);
    SelectionModel model;
    model.setSelection(scatteredCases(rowCount, rowCount / 2));
    for (auto _ : state) {
        benchmark::DoNotOptimize(model.getSelections());
    }
    state.SetItemsProcessed(state.iterations() * (rowCount / 2));
}

BENCHMARK(BM_SelectionModel_setSelection)
    ->ArgName("rows")
    ->RangeMultiplier(10)
    ->Range(10000, 1000000)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_SelectionModel_getSelections)
    ->ArgName("rows")
    ->RangeMultiplier(10)
    ->Range(10000, 1000000)
    ->Unit(benchmark::kMicrosecond);

} // namespace
