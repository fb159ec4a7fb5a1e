#include <analyzer/views/CaseTableOrder.h>

#include <benchmark/benchmark.h>

#include <benchmarks/support/caseTables.h>

using namespace caseTables;

namespace {

/// Sorts by column 0, shuffled whole numbers, or 1, real numbers.
void sort(benchmark::State& state)
{
    const vtkSmartPointer<vtkTable> table = recordTable(state.range(0), IDOrder::Shuffled);
    vtkAbstractArray& column = *table->GetColumn(state.range(1));
    for (auto _ : state) {
        benchmark::DoNotOptimize(analyzer::CaseTableOrder::sorted(column, Qt::AscendingOrder));
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

BENCHMARK(sort)
    ->Name("table/sort/ours")
    ->ArgNames({"rows", "real"})
    ->ArgsProduct({benchmark::CreateRange(10000, 1000000, 10), {0, 1}})
    ->Unit(benchmark::kMicrosecond);

} // namespace
