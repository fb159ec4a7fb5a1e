#include <analyzer/views/CaseTableModel.h>
#include <analyzer/views/CaseTableSelection.h>

#include <dataviews/common/selection/DataView2DSelectionSynchronizer.h>
#include <dataviews/common/selection/PlotSelectionModel.h>

#include <dataviews/platform/data/RowBitmap.h>
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

/// A chart of one plot of points, not rendered, in which somebody picks.
class PickChart
{
public:
    explicit PickChart(vtkTable& table)
        : m_plot(m_chart->AddPlot(vtkChart::POINTS))
    {
        m_plot->SetInputData(&table, 1, 2);
    }

    [[nodiscard]] vtkChart& chart() const { return *m_chart; }

    [[nodiscard]] const vtkSmartPointer<vtkPlot>& plot() const { return m_plot; }

    /// What the chart does when the mouse button is released.
    void pick(vtkIdTypeArray& rows) const
    {
        m_plot->SetSelection(&rows);
        m_chart->InvokeEvent(vtkCommand::SelectionChangedEvent);
    }

private:
    vtkNew<vtkChartXY> m_chart;
    vtkSmartPointer<vtkPlot> m_plot;
};

class SynchronizedChart : public PickChart
{
public:
    SynchronizedChart(vtkTable& table, const boost::shared_ptr<SelectionModelInterface>& master)
        : PickChart(table)
        , m_synchronizer(
              &chart(),
              m_interactor.GetPointer(),
              boost::make_shared<PlotSelectionModel>(m_interactor.GetPointer(), master))
    {
        m_synchronizer.setPlotsToSynchronize({plot()});
    }

private:
    vtkNew<vtkRenderWindowInteractor> m_interactor;
    DataView2DSelectionSynchronizer m_synchronizer;
};

/// Two picks of the same size, which take turns so that each changes the selection.
struct Picks
{
    Picks(vtkIdType rowCount, vtkIdType count)
        : rows{scatteredRows(rowCount, count, 0), scatteredRows(rowCount, count, 1)}
    {}

    vtkIdTypeArray& next() { return *rows[turn++ % 2]; }

    vtkSmartPointer<vtkIdTypeArray> rows[2];
    std::size_t turn = 0;
};

/// From the release of the mouse button in one chart to the last of three views: that chart, another one, and a table of
/// the cases. Painting not included.
void pickInChart(benchmark::State& state)
{
    const vtkIdType rowCount = state.range(0);
    const vtkSmartPointer<vtkTable> table = recordTable(rowCount, orderOf(state.range(2)));
    const auto master = boost::make_shared<SelectionModel>();
    const SynchronizedChart source(*table, master);
    const SynchronizedChart target(*table, master);
    analyzer::CaseTableModel tableModel;
    tableModel.setTable(table);
    const analyzer::CaseTableSelection tableSelection(tableModel, master);
    Picks picks(rowCount, state.range(1));
    for (auto _ : state) {
        source.pick(picks.next());
        benchmark::DoNotOptimize(target.plot()->GetSelection());
        benchmark::DoNotOptimize(tableSelection.rows());
    }
    if (tableSelection.count() != static_cast<std::size_t>(state.range(1))
        || target.plot()->GetSelection()->GetNumberOfTuples() != state.range(1)) {
        state.SkipWithError("A view does not show what was picked.");
    }
    state.SetItemsProcessed(state.iterations() * state.range(1));
}

void pickInChartPlainly(benchmark::State& state)
{
    const vtkIdType rowCount = state.range(0);
    const vtkSmartPointer<vtkTable> table = recordTable(rowCount, orderOf(state.range(2)));
    plainSelection::Master master;
    const PickChart source(*table);
    const plainSelection::ChartLink sourceLink(source.chart(), master);
    const PickChart target(*table);
    const plainSelection::ChartLink targetLink(target.chart(), master);
    RowBitmap tableRows(static_cast<std::size_t>(rowCount));
    master.addListener([&] {
        const Cases cases = master.selection();
        vtkAbstractArray& ids = *table->GetColumn(0);
        for (vtkIdType row = 0; row < rowCount; ++row) {
            tableRows.set(
                static_cast<std::size_t>(row), cases.count(plainSelection::caseID(ids, row)) != 0);
        }
    });
    Picks picks(rowCount, state.range(1));
    for (auto _ : state) {
        source.pick(picks.next());
        benchmark::DoNotOptimize(target.plot()->GetSelection());
        benchmark::DoNotOptimize(tableRows);
    }
    if (tableRows.count() != static_cast<std::size_t>(state.range(1))
        || target.plot()->GetSelection()->GetNumberOfTuples() != state.range(1)) {
        state.SkipWithError("A view does not show what was picked.");
    }
    state.SetItemsProcessed(state.iterations() * state.range(1));
}

void chainArguments(benchmark::internal::Benchmark* benchmark)
{
    benchmark->ArgNames({"rows", "picked", "shuffled"})
        ->ArgsProduct({{1000000}, {1, 10000, 500000}, {0, 1}})
        ->Unit(benchmark::kMicrosecond);
}

BENCHMARK(pickInChart)->Name("selection/pick_in_chart/ours")->Apply(chainArguments);
BENCHMARK(pickInChartPlainly)->Name("selection/pick_in_chart/plain")->Apply(chainArguments);

} // namespace
