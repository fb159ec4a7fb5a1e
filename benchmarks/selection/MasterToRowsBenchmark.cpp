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
#include <memory>
#include <vector>

#include <benchmarks/selection/plainSelection.h>
#include <benchmarks/support/caseTables.h>

using namespace caseTables;

namespace {

/// A chart of one plot of points, not rendered, in step with a master.
class LinkedChart
{
public:
    LinkedChart(vtkTable& table, const boost::shared_ptr<SelectionModelInterface>& master)
        : m_plot(m_chart->AddPlot(vtkChart::POINTS))
        , m_synchronizer(
              m_chart.GetPointer(),
              m_interactor.GetPointer(),
              boost::make_shared<PlotSelectionModel>(m_interactor.GetPointer(), master))
    {
        m_plot->SetInputData(&table, 1, 2);
        m_synchronizer.setPlotsToSynchronize({m_plot});
    }

    void showMaster() { m_synchronizer.updateChartSelections(); }

    [[nodiscard]] vtkIdTypeArray& rows() const { return *m_plot->GetSelection(); }

private:
    vtkNew<vtkChartXY> m_chart;
    vtkNew<vtkRenderWindowInteractor> m_interactor;
    vtkSmartPointer<vtkPlot> m_plot;
    DataView2DSelectionSynchronizer m_synchronizer;
};

/// What the master holds becomes the selected rows of a plot.
void masterToRows(benchmark::State& state, IDOrder order)
{
    const vtkIdType rowCount = state.range(0);
    const vtkIdType count = shareOf(rowCount, state.range(1));
    const vtkSmartPointer<vtkTable> table = recordTable(rowCount, order);
    const auto master = boost::make_shared<SelectionModel>();
    LinkedChart chart(*table, master);
    master->setSelection(scatteredCases(rowCount, count));
    for (auto _ : state) {
        chart.showMaster();
        benchmark::DoNotOptimize(chart.rows());
    }
    if (chart.rows().GetNumberOfTuples() != count) {
        state.SkipWithError("The plot does not show what is selected.");
    }
}

/// The same value by value.
void masterToRowsPlain(benchmark::State& state)
{
    const vtkIdType rowCount = state.range(0);
    const vtkSmartPointer<vtkIntArray> ids = caseIDs(rowCount, IDOrder::Ascending);
    const Cases cases = scatteredCases(rowCount, shareOf(rowCount, state.range(1)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(plainSelection::rowsOf(*ids, cases));
    }
}

/// A walk over the selection as a std::set, whose nodes lie in memory in the order of walking.
void masterToRowsFloor(benchmark::State& state)
{
    const vtkIdType rowCount = state.range(0);
    const Cases cases = scatteredCases(rowCount, shareOf(rowCount, state.range(1)));
    for (auto _ : state) {
        unsigned long long sum = 0;
        for (const unsigned long long id : cases) {
            sum += id;
        }
        benchmark::DoNotOptimize(sum);
    }
}

/// A new selection of half of the cases, as a std::set, up to \p chartCount charts over one table.
void changeOfMaster(benchmark::State& state, std::size_t chartCount, IDOrder order)
{
    constexpr vtkIdType rowCount = 1000000;
    const vtkSmartPointer<vtkTable> table = recordTable(rowCount, order);
    const auto master = boost::make_shared<SelectionModel>();
    std::vector<std::unique_ptr<LinkedChart>> charts;
    while (charts.size() < chartCount) {
        charts.push_back(std::make_unique<LinkedChart>(*table, master));
    }
    const Cases choices[] = {
        scatteredCases(rowCount, rowCount / 2, 0), scatteredCases(rowCount, rowCount / 2, 1)};
    std::size_t turn = 0;
    for (auto _ : state) {
        master->setSelection(choices[turn++ % 2]);
        benchmark::DoNotOptimize(charts.back()->rows());
    }
}

void shares(benchmark::internal::Benchmark* benchmark)
{
    benchmark->ArgNames({"rows", "permille"})
        ->ArgsProduct({{10000, 1000000}, {0, 10, 500}})
        ->Unit(benchmark::kMicrosecond);
}

BENCHMARK_CAPTURE(masterToRows, ascending, IDOrder::Ascending)
    ->Name("selection/master_to_rows/ours")
    ->Apply(shares);
BENCHMARK_CAPTURE(masterToRows, shuffled, IDOrder::Shuffled)
    ->Name("selection/master_to_rows/ours_shuffled")
    ->Apply(shares);
BENCHMARK(masterToRowsPlain)->Name("selection/master_to_rows/plain")->Apply(shares);
BENCHMARK(masterToRowsFloor)->Name("selection/master_to_rows/floor")->Apply(shares);
BENCHMARK_CAPTURE(changeOfMaster, three, 3U, IDOrder::Ascending)
    ->Name("selection/three_plots/ours")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(changeOfMaster, one, 1U, IDOrder::Ascending)
    ->Name("selection/three_plots/floor")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(changeOfMaster, three_shuffled, 3U, IDOrder::Shuffled)
    ->Name("selection/three_plots/ours_shuffled")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(changeOfMaster, one_shuffled, 1U, IDOrder::Shuffled)
    ->Name("selection/three_plots/floor_shuffled")
    ->Unit(benchmark::kMillisecond);

} // namespace
