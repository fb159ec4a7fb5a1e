#include <dataviews/common/selection/CaseIDColumn.h>
#include <dataviews/common/selection/CaseIDMembership.h>

#include <benchmark/benchmark.h>

#include <cstdint>
#include <utility>
#include <vector>

#include <benchmarks/selection/plainSelection.h>
#include <benchmarks/support/caseTables.h>

using namespace caseTables;

namespace {

/// Runs \p rowsOf, a function of a column and a selection.
template <class Function>
void measureRowsOf(benchmark::State& state, Function rowsOf)
{
    const vtkIdType rowCount = state.range(0);
    const vtkSmartPointer<vtkIntArray> ids = caseIDs(rowCount, orderOf(state.range(2)));
    const Cases cases = scatteredCases(rowCount, shareOf(rowCount, state.range(1)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(rowsOf(*ids, cases));
    }
    state.SetItemsProcessed(state.iterations() * rowCount);
}

/// Runs \p casesOf, a function of a column and an array of half of its rows.
template <class Function>
void measureCasesOf(benchmark::State& state, Function casesOf)
{
    const vtkIdType rowCount = state.range(0);
    const vtkSmartPointer<vtkIntArray> ids = caseIDs(rowCount, orderOf(state.range(1)));
    const vtkSmartPointer<vtkIdTypeArray> rows = scatteredRows(rowCount, rowCount / 2);
    for (auto _ : state) {
        benchmark::DoNotOptimize(casesOf(*ids, *rows));
    }
    state.SetItemsProcessed(state.iterations() * (rowCount / 2));
}

void pickArguments(benchmark::internal::Benchmark* benchmark)
{
    benchmark->ArgNames({"rows", "shuffled"})
        ->ArgsProduct({benchmark::CreateRange(10000, 1000000, 10), {0, 1}});
}

void rowsOfCases(benchmark::State& state)
{
    measureRowsOf(state, [](vtkAbstractArray& column, const Cases& cases) {
        return CaseIDColumn(column).rowsOf(CaseIDMembership(cases));
    });
}

void rowsOfCasesPlainly(benchmark::State& state)
{
    measureRowsOf(state, plainSelection::rowsOf);
}

void casesOfRows(benchmark::State& state)
{
    measureCasesOf(state, [](vtkAbstractArray& column, vtkIdTypeArray& rows) {
        std::vector<CaseIDMembership::Key> keys;
        CaseIDColumn(column).appendKeys(rows, keys);
        return CaseIDColumn::toCaseIDs(std::move(keys));
    });
}

void casesOfRowsPlainly(benchmark::State& state)
{
    measureCasesOf(state, plainSelection::casesOf);
}

BENCHMARK(rowsOfCases)
    ->Name("selection/rows_of_cases/ours")
    ->Apply(selectionArguments)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(rowsOfCasesPlainly)
    ->Name("selection/rows_of_cases/plain")
    ->Apply(selectionArguments)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(casesOfRows)
    ->Name("selection/cases_of_rows/ours")
    ->Apply(pickArguments)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(casesOfRowsPlainly)
    ->Name("selection/cases_of_rows/plain")
    ->Apply(pickArguments)
    ->Unit(benchmark::kMicrosecond);

} // namespace
