#include <dataviews/common/selection/DataView2DSelectionSynchronizer.h>
#include <dataviews/common/selection/PlotSelectionModel.h>

#include <dataviews/platform/selection/SelectionModel.h>

#include <vtkChartXY.h>
#include <vtkNew.h>
#include <vtkPlot.h>
#include <vtkRenderWindowInteractor.h>

#include <boost/make_shared.hpp>

#include <benchmark/benchmark.h>

#include <cstddef>

#include <benchmarks/selection/plainSelection.h>
#include <benchmarks/support/caseTables.h>

using namespace caseTables;

namespace {

/// A chart of one plot of points, not rendered.
struct Chart
{
    explicit Chart(vtkTable& table)
        : plot(chart->AddPlot(vtkChart::POINTS))
    {
        plot->SetInputData(&table, 1, 2);
    }

    vtkNew<vtkChartXY> chart;
    vtkSmartPointer<vtkPlot> plot;
};

/// A change of the master, up to the new selection of one chart; two selections take turns.
void masterToChart(benchmark::State& state)
{
    const vtkIdType rowCount = state.range(0);
    const vtkIdType count = shareOf(rowCount, state.range(1));
    Chart chart(*recordTable(rowCount, orderOf(state.range(2))));
    const auto master = boost::make_shared<SelectionModel>();
    const vtkNew<vtkRenderWindowInteractor> interactor;
    DataView2DSelectionSynchronizer synchronizer(
        chart.chart.GetPointer(),
        interactor.GetPointer(),
        boost::make_shared<PlotSelectionModel>(interactor.GetPointer(), master));
    synchronizer.setPlotsToSynchronize({chart.plot});
    const Cases choices[] = {
        scatteredCases(rowCount, count, 0), scatteredCases(rowCount, count, 1)};
    std::size_t turn = 0;
    for (auto _ : state) {
        master->setSelection(choices[turn++ % 2]);
        benchmark::DoNotOptimize(chart.plot->GetSelection());
    }
    state.SetItemsProcessed(state.iterations() * rowCount);
}

void masterToChartPlainly(benchmark::State& state)
{
    const vtkIdType rowCount = state.range(0);
    const vtkIdType count = shareOf(rowCount, state.range(1));
    Chart chart(*recordTable(rowCount, orderOf(state.range(2))));
    plainSelection::Master master;
    const plainSelection::ChartLink link(*chart.chart, master);
    const Cases choices[] = {
        scatteredCases(rowCount, count, 0), scatteredCases(rowCount, count, 1)};
    std::size_t turn = 0;
    for (auto _ : state) {
        master.setSelection(choices[turn++ % 2]);
        benchmark::DoNotOptimize(chart.plot->GetSelection());
    }
    state.SetItemsProcessed(state.iterations() * rowCount);
}

/// The selection of before written into a chart anew, as after a change of its table.
void updateChart(benchmark::State& state)
{
    const vtkIdType rowCount = state.range(0);
    Chart chart(*recordTable(rowCount, orderOf(state.range(2))));
    const auto master = boost::make_shared<SelectionModel>();
    const vtkNew<vtkRenderWindowInteractor> interactor;
    DataView2DSelectionSynchronizer synchronizer(
        chart.chart.GetPointer(),
        interactor.GetPointer(),
        boost::make_shared<PlotSelectionModel>(interactor.GetPointer(), master));
    synchronizer.setPlotsToSynchronize({chart.plot});
    master->setSelection(scatteredCases(rowCount, shareOf(rowCount, state.range(1))));
    for (auto _ : state) {
        synchronizer.updateChartSelections();
        benchmark::DoNotOptimize(chart.plot->GetSelection());
    }
    state.SetItemsProcessed(state.iterations() * rowCount);
}

void updateChartPlainly(benchmark::State& state)
{
    const vtkIdType rowCount = state.range(0);
    Chart chart(*recordTable(rowCount, orderOf(state.range(2))));
    plainSelection::Master master;
    plainSelection::ChartLink link(*chart.chart, master);
    master.setSelection(scatteredCases(rowCount, shareOf(rowCount, state.range(1))));
    for (auto _ : state) {
        link.updateChart();
        benchmark::DoNotOptimize(chart.plot->GetSelection());
    }
    state.SetItemsProcessed(state.iterations() * rowCount);
}

BENCHMARK(masterToChart)
    ->Name("selection/master_to_chart/ours")
    ->Apply(selectionArguments)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(masterToChartPlainly)
    ->Name("selection/master_to_chart/plain")
    ->Apply(selectionArguments)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(updateChart)
    ->Name("selection/update_chart/ours")
    ->Apply(selectionArguments)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(updateChartPlainly)
    ->Name("selection/update_chart/plain")
    ->Apply(selectionArguments)
    ->Unit(benchmark::kMicrosecond);

} // namespace
