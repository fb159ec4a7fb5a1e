#include <dataviews/common/charts/CategoryLegend.h>
#include <dataviews/common/charts/ChartXY.h>
#include <dataviews/common/charts/ColorPalette.h>
#include <dataviews/common/charts/InvalidPointsFilter.h>
#include <dataviews/common/charts/RingedPlotPoints.h>
#include <dataviews/common/selection/DataView2DSelectionSynchronizer.h>
#include <dataviews/common/selection/PlotSelectionModel.h>
#include <dataviews/common/views/Property.h>

#include <dataviews/platform/data/Variable.h>
#include <dataviews/platform/selection/SelectionModel.h>

#include <vtkContext2D.h>
#include <vtkLookupTable.h>
#include <vtkObjectFactory.h>
#include <vtkRenderWindowInteractor.h>

#include <boost/make_shared.hpp>

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <benchmarks/support/caseTables.h>
#include <tests/support/OffScreenChart.h>

using namespace caseTables;

namespace {

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

constexpr int width = 900;
constexpr int height = 700;

/// A chart that tells how much of a frame is its own: what is done before VTK's chart paints, and the places of the
/// legends. The points that VTK makes once, whoever asks for them first, are not.
class TimedChart : public ChartXY
{
public:
    vtkTypeMacro(TimedChart, ChartXY) static TimedChart* New()
    {
        VTK_STANDARD_NEW_BODY(TimedChart);
    }

    std::function<void(vtkContext2D&)> insidePaint;

    bool Paint(vtkContext2D* painter) override
    {
        const Clock::time_point start = Clock::now();
        m_updates = m_lastUpdate = m_legends = Seconds(0.0);
        m_lastUpdateStart = start;
        const bool isPainted = ChartXY::Paint(painter);
        m_own = Seconds(m_lastUpdateStart - start) - m_updates + m_legends;
        if (insidePaint) {
            std::exchange(insidePaint, nullptr)(*painter);
        }
        return isPainted;
    }

    // The last one of a frame is called by VTK's chart, as the first thing it does.
    void Update() override
    {
        m_updates += m_lastUpdate;
        m_legends = Seconds(0.0);
        m_lastUpdateStart = Clock::now();
        ChartXY::Update();
        m_lastUpdate = Clock::now() - m_lastUpdateStart;
    }

    void SetLegendPosition(const vtkRectf& rect) override
    {
        const Clock::time_point start = Clock::now();
        ChartXY::SetLegendPosition(rect);
        m_legends += Clock::now() - start;
    }

    void layOut(vtkContext2D& painter)
    {
        Update();
        UpdateLayout(&painter);
    }

    /// Of the last frame.
    [[nodiscard]] Seconds own() const { return m_own; }

private:
    Clock::time_point m_lastUpdateStart;
    Seconds m_lastUpdate{};
    Seconds m_updates{}; ///< but for the last one
    Seconds m_legends{};
    Seconds m_own{};
};

/// A chart of colored points of which every second is selected, with all that the library puts between the table and
/// the picture.
class ColoredPoints
{
public:
    ColoredPoints(OffScreenChart<TimedChart>& chart, vtkTable& table)
        : m_chart(chart)
    {
        using Handle = InvalidPointsFilter::VariableHandle;
        std::vector<boost::shared_ptr<const InvalidPointsFilter::VariableProperty>> shown;
        for (const char* name : {"x", "y"}) {
            m_variables.push_back(
                boost::make_shared<Variable>(table.GetColumnByName(name), Variable::Output));
            shown.push_back(boost::make_shared<corvane::Property<Handle>>(m_variables.back()));
        }
        m_filter = InvalidPointsFilter::New(shown);
        m_filter->SetInputData(&table);
        m_filter->Update();

        vtkNew<vtkLookupTable> colors;
        applyColorPalette(*colors, ColorPalette::Viridis);
        colors->SetRange(0.0, 1.0);
        m_plot->SetInputData(m_filter->GetOutput(), 1, 2);
        m_plot->SetMarkerSize(7.0F);
        m_plot->SetLookupTable(colors);
        m_plot->SelectColorArray("y");
        m_plot->ScalarVisibilityOn();
        chart->AddPlot(m_plot);

        const vtkIdType rowCount = table.GetNumberOfRows();
        m_synchronizer.setPlotsToSynchronize({m_plot});
        m_master->setSelection(scatteredCases(rowCount, rowCount / 2));
    }

    ColoredPoints(const ColoredPoints&) = delete;
    ColoredPoints& operator=(const ColoredPoints&) = delete;

    ~ColoredPoints() { m_chart->RemovePlotInstance(m_plot); }

    /// What follows a change of the table, before the frame.
    void update()
    {
        m_filter->Modified();
        m_filter->Update();
        m_synchronizer.updateChartSelections();
    }

private:
    OffScreenChart<TimedChart>& m_chart;
    std::vector<boost::shared_ptr<Variable>> m_variables;
    vtkSmartPointer<InvalidPointsFilter> m_filter;
    vtkNew<RingedPlotPoints> m_plot;
    vtkNew<vtkRenderWindowInteractor> m_interactor;
    boost::shared_ptr<SelectionModel> m_master = boost::make_shared<SelectionModel>();
    DataView2DSelectionSynchronizer m_synchronizer{
        &*m_chart,
        m_interactor.GetPointer(),
        boost::make_shared<PlotSelectionModel>(m_interactor.GetPointer(), m_master)};
};

bool isWithoutDisplay(benchmark::State& state)
{
    const bool isWithout = std::getenv("DISPLAY") == nullptr;
    if (isWithout) {
        state.SkipWithError("Needs a display, such as xvfb-run gives.");
    }
    return isWithout;
}

void report(benchmark::State& state, Seconds whole, Seconds own)
{
    const auto frames = static_cast<double>(state.iterations());
    constexpr double percent = 100.0;
    state.counters["own_us"] = own.count() * 1e6 / frames;
    state.counters["own_percent"] = percent * own.count() / whole.count();
}

/// A new table in the chart, up to its picture: with all points made and fitted to the axes.
void firstFrame(benchmark::State& state)
{
    if (isWithoutDisplay(state)) {
        return;
    }
    OffScreenChart<TimedChart> chart(width, height);
    const auto table = recordTable(state.range(0), IDOrder::Ascending);
    Seconds whole{};
    Seconds own{};
    for (auto _ : state) {
        ColoredPoints points(chart, *table);
        const Clock::time_point start = Clock::now();
        points.update();
        const Seconds update = Clock::now() - start;
        chart->RecalculateBounds();
        chart.render();
        chart.view().GetRenderWindow()->WaitForCompletion();
        const Seconds frame = Clock::now() - start;
        state.SetIterationTime(frame.count());
        whole += frame;
        own += update + chart->own();
    }
    report(state, whole, own);
}

/// The same picture again, as after a move of the mouse.
void frame(benchmark::State& state)
{
    if (isWithoutDisplay(state)) {
        return;
    }
    OffScreenChart<TimedChart> chart(width, height);
    const auto table = recordTable(state.range(0), IDOrder::Ascending);
    ColoredPoints points(chart, *table);
    points.update();
    chart.render();
    Seconds whole{};
    Seconds own{};
    for (auto _ : state) {
        const Clock::time_point start = Clock::now();
        chart.render();
        chart.view().GetRenderWindow()->WaitForCompletion();
        const Seconds frame = Clock::now() - start;
        state.SetIterationTime(frame.count());
        whole += frame;
        own += chart->own();
    }
    report(state, whole, own);
}

/// What a number of legends of eight categories each adds to a frame before it is painted.
void layOutLegends(benchmark::State& state)
{
    if (isWithoutDisplay(state)) {
        return;
    }
    OffScreenChart<TimedChart> chart(width, height);
    chart->SetRenderEmpty(true);
    for (int i = 0; i < state.range(0); ++i) {
        vtkNew<CategoryLegend> legend;
        legend->setTitle("Variable " + std::to_string(i));
        std::vector<CategoryLegend::Entry> entries;
        constexpr std::size_t categories = 8;
        for (std::size_t category = 0; category < categories; ++category) {
            entries.push_back(
                {"category " + std::to_string(category), categoryColor(category, false)});
        }
        legend->setEntries(entries);
        chart->addLegend(legend.GetPointer());
    }
    chart.render();
    chart->insidePaint = [&](vtkContext2D& painter) {
        for (auto _ : state) {
            chart->layOut(painter);
        }
    };
    chart.render();
}

BENCHMARK(firstFrame)
    ->Name("points/first_frame/ours")
    ->ArgName("points")
    ->RangeMultiplier(10)
    ->Range(10000, 1000000)
    ->Iterations(5)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(frame)
    ->Name("points/frame/ours")
    ->ArgName("points")
    ->RangeMultiplier(10)
    ->Range(10000, 1000000)
    ->Iterations(5)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(layOutLegends)
    ->Name("legends/layout/ours")
    ->ArgName("legends")
    ->Arg(0)
    ->Arg(1)
    ->Arg(3)
    ->Arg(8)
    ->Unit(benchmark::kMicrosecond);

} // namespace
