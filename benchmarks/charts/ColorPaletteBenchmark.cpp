#include <dataviews/common/charts/ColorPalette.h>

#include <vtkDoubleArray.h>
#include <vtkLookupTable.h>
#include <vtkNew.h>
#include <vtkTable.h>
#include <vtkUnsignedCharArray.h>

#include <benchmark/benchmark.h>

#include <cstddef>
#include <vector>

#include <benchmarks/support/caseTables.h>

using namespace caseTables;

namespace {

/// The colors of the points of a plot, as vtkPlotPoints asks for them.
void mapScalars(benchmark::State& state)
{
    const auto table = recordTable(state.range(0), IDOrder::Ascending);
    auto* const column = vtkDataArray::SafeDownCast(table->GetColumnByName("y"));
    vtkNew<vtkLookupTable> colors;
    applyColorPalette(*colors, ColorPalette::Viridis);
    colors->SetRange(0.0, 1.0);
    for (auto _ : state) {
        const auto mapped = vtkSmartPointer<vtkUnsignedCharArray>::Take(
            colors->MapScalars(column, VTK_COLOR_MODE_MAP_SCALARS, -1));
        benchmark::DoNotOptimize(mapped->GetPointer(0));
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

/// What the memory of the machine allows: the column read, and four bytes a row written.
void copyAsColors(benchmark::State& state)
{
    const auto table = recordTable(state.range(0), IDOrder::Ascending);
    auto* const column = vtkDoubleArray::SafeDownCast(table->GetColumnByName("y"));
    const auto rowCount = static_cast<std::size_t>(state.range(0));
    std::vector<float> copy(rowCount);
    for (auto _ : state) {
        const double* values = column->GetPointer(0);
        for (std::size_t row = 0; row < rowCount; ++row) {
            copy[row] = static_cast<float>(values[row]);
        }
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

BENCHMARK(mapScalars)
    ->Name("points/color/ours")
    ->ArgName("rows")
    ->RangeMultiplier(10)
    ->Range(10000, 1000000)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(copyAsColors)
    ->Name("points/color/floor")
    ->ArgName("rows")
    ->RangeMultiplier(10)
    ->Range(10000, 1000000)
    ->Unit(benchmark::kMicrosecond);

} // namespace
