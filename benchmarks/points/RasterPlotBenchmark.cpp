#include <dataviews/common/charts/ChartXY.h>
#include <dataviews/common/charts/RasterPlotPoints.h>
#include <dataviews/common/charts/RingedPlotPoints.h>

#include <vtkAxis.h>
#include <vtkDoubleArray.h>
#include <vtkIdTypeArray.h>
#include <vtkLookupTable.h>
#include <vtkObjectFactory.h>
#include <vtkPlotPoints.h>
#include <vtkTable.h>

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>
#include <type_traits>

#include <tests/support/OffScreenChart.h>

namespace {

constexpr int width = 1120;
constexpr int height = 720;
constexpr float markerSize = 5.0F;

enum class Job
{
    Plain,
    Colored,
    Selected
};

/// A cloud with some points far from it.
vtkSmartPointer<vtkTable> cloud(std::int64_t count)
{
    std::mt19937 random(1);
    std::normal_distribution<double> near(0.0, 1.0);
    std::uniform_real_distribution<double> far(-5.0, 5.0);
    auto table = vtkSmartPointer<vtkTable>::New();
    for (const char* name : {"x", "y", "color"}) {
        vtkNew<vtkDoubleArray> column;
        column->SetName(name);
        column->SetNumberOfValues(count);
        for (vtkIdType row = 0; row < count; ++row) {
            column->SetValue(row, row % 1000 == 0 ? far(random) : near(random));
        }
        table->AddColumn(column);
    }
    return table;
}

/// A chart of \p Plot whose axes stay.
template <class Plot>
class PointsChart
{
public:
    PointsChart(std::int64_t count, Job job)
        : m_count(count)
    {
        m_chart.view().GetRenderWindow()->SetMultiSamples(0);
        m_plot->SetInputData(cloud(count), 0, 1);
        m_plot->SetMarkerStyle(vtkPlotPoints::CIRCLE);
        m_plot->SetMarkerSize(markerSize);
        m_plot->SetColor(30, 90, 200, 255);
        if (job == Job::Colored) {
            const vtkNew<vtkLookupTable> colors;
            colors->SetRange(-2.0, 2.0);
            colors->Build(); // Plots do not.
            m_plot->SetLookupTable(colors);
            m_plot->SelectColorArray(vtkStdString("color"));
            m_plot->ScalarVisibilityOn();
        }
        m_chart->AddPlot(m_plot);
        setRange(0.0);
        render();
        render();
    }

    PointsChart(const PointsChart&) = delete;
    PointsChart& operator=(const PointsChart&) = delete;

    ~PointsChart() { m_chart->RemovePlotInstance(m_plot); }

    /// Moves the view by \p shift and makes it \p half as wide to each side, in units of the axis.
    void setRange(double shift, double half = 5.0)
    {
        for (const int axis : {vtkAxis::BOTTOM, vtkAxis::LEFT}) {
            m_chart->GetAxis(axis)->SetBehavior(vtkAxis::FIXED);
            m_chart->GetAxis(axis)->SetRange(shift - half, shift + half);
        }
    }

    /// Half of the cases, others for each \p step.
    void select(std::int64_t step)
    {
        const vtkNew<vtkIdTypeArray> rows;
        rows->SetNumberOfValues(m_count / 2);
        for (vtkIdType i = 0; i < rows->GetNumberOfValues(); ++i) {
            rows->SetValue(i, 2 * i + step % 2);
        }
        m_plot->SetSelection(rows);
    }

    void render()
    {
        m_chart->GetScene()->SetDirty(true);
        m_chart.render();
        m_chart.view().GetRenderWindow()->WaitForCompletion();
    }

    Plot& plot() { return *m_plot; }

private:
    std::int64_t m_count;
    OffScreenChart<ChartXY> m_chart{width, height};
    vtkNew<Plot> m_plot;
};

/// Nothing in the chart: what a frame costs whatever is in it.
class NoPoints : public vtkPlotPoints
{
public:
    vtkTypeMacro(NoPoints, vtkPlotPoints) static NoPoints* New()
    {
        VTK_STANDARD_NEW_BODY(NoPoints);
    }

    bool Paint(vtkContext2D* /*painter*/) override { return true; }
};

/// Marks by rings, point by point.
class PlainRings : public RingedPlotPoints
{
public:
    vtkTypeMacro(PlainRings, RingedPlotPoints) static PlainRings* New()
    {
        VTK_STANDARD_NEW_BODY(PlainRings);
    }

    bool Paint(vtkContext2D* painter) override { return paintShapes(painter); }
};

bool isWithoutDisplay(benchmark::State& state)
{
    const bool isWithout = std::getenv("DISPLAY") == nullptr;
    if (isWithout) {
        state.SkipWithError("Needs a display, such as xvfb-run gives.");
    }
    return isWithout;
}

/// A picture after a change of what is in it: the view, by less than a pixel, or the selection.
template <class Plot>
void paint(benchmark::State& state, Job job)
{
    if (isWithoutDisplay(state)) {
        return;
    }
    PointsChart<Plot> chart(state.range(0), job);
    std::int64_t step = 0;
    for (auto _ : state) {
        ++step;
        if (job == Job::Selected) {
            state.PauseTiming();
            chart.select(step);
            state.ResumeTiming();
        } else {
            chart.setRange(step % 2 == 0 ? 0.0 : 0.003);
        }
        chart.render();
    }
}

/// Pictures while the view is moved, about two pixels each, or zoomed in by a hundredth each.
template <class Plot>
void move(benchmark::State& state, bool zooms)
{
    if (isWithoutDisplay(state)) {
        return;
    }
    PointsChart<Plot> chart(state.range(0), Job::Plain);
    chart.select(0);
    std::int64_t step = 0;
    for (auto _ : state) {
        const auto distance = static_cast<double>(++step % 50);
        if (zooms) {
            chart.setRange(0.0, 5.0 - 0.05 * distance);
        } else {
            chart.setRange(0.02 * distance);
        }
        chart.render();
    }
}

/// The points near places all over the view; \p isFirst asks after each move of the view, so that the index is made anew.
void hover(benchmark::State& state, bool isFirst)
{
    if (isWithoutDisplay(state)) {
        return;
    }
    PointsChart<RasterPlotPoints> chart(state.range(0), Job::Plain);
    std::mt19937 random(2);
    std::uniform_real_distribution<float> place(-2.0F, 2.0F);
    constexpr float reach = 0.06F;
    double shift = 0.0;
    for (auto _ : state) {
        if (isFirst) {
            state.PauseTiming();
            // Farther than the index reaches beyond the view.
            shift = shift == 0.0 ? 1000.0 : 0.0;
            chart.setRange(shift);
            state.ResumeTiming();
        }
        const auto middle = static_cast<float>(shift);
        const float x = middle + place(random);
        const float y = middle + place(random);
        benchmark::DoNotOptimize(chart.plot().rowsIn({x - reach, y - reach, x + reach, y + reach}));
    }
}

/// The same by looking at all points.
void hoverPlainly(benchmark::State& state)
{
    const auto table = cloud(state.range(0));
    const double* const x = vtkDoubleArray::SafeDownCast(table->GetColumn(0))->GetPointer(0);
    const double* const y = vtkDoubleArray::SafeDownCast(table->GetColumn(1))->GetPointer(0);
    std::mt19937 random(2);
    std::uniform_real_distribution<double> place(-2.0, 2.0);
    constexpr double reach = 0.06;
    for (auto _ : state) {
        const double middleX = place(random);
        const double middleY = place(random);
        std::int64_t found = -1;
        for (std::int64_t row = 0; row < state.range(0); ++row) {
            if (std::abs(x[row] - middleX) <= reach && std::abs(y[row] - middleY) <= reach) {
                found = row;
            }
        }
        benchmark::DoNotOptimize(found);
    }
}

void sizes(benchmark::internal::Benchmark* registered)
{
    registered->ArgName("points")->Arg(5000)->Arg(10000)->Arg(100000)->Arg(1000000);
}

template <class Function>
void add(const std::string& name, Function function, benchmark::TimeUnit unit)
{
    benchmark::RegisterBenchmark(name.c_str(), function)->Apply(sizes)->Unit(unit);
}

template <class Plot>
void addPaint(const std::string& variant)
{
    const struct
    {
        const char* name;
        Job job;
    } jobs[] = {
        {"points/paint/", Job::Plain},
        {"points/paint_colored/", Job::Colored},
        {"points/paint_selected/", Job::Selected}};

    for (const auto& entry : jobs) {
        add(
            entry.name + variant,
            [job = entry.job](benchmark::State& state) { paint<Plot>(state, job); },
            benchmark::kMillisecond);
    }
}

template <class Plot>
void addMove(const std::string& variant)
{
    for (const bool zooms : {false, true}) {
        add((zooms ? "points/zoom/" : "points/pan/") + variant,
            [zooms](benchmark::State& state) { move<Plot>(state, zooms); },
            benchmark::kMillisecond);
    }
}

const bool isRegistered = [] {
    addPaint<RasterPlotPoints>("ours");
    addPaint<vtkPlotPoints>("plain");
    addPaint<NoPoints>("floor");
    const auto rings = [](auto* plot) {
        using Plot = std::remove_pointer_t<decltype(plot)>;
        return [](benchmark::State& state) { paint<Plot>(state, Job::Selected); };
    };
    add("points/paint_rings/ours",
        rings(static_cast<RingedPlotPoints*>(nullptr)),
        benchmark::kMillisecond);
    add("points/paint_rings/plain",
        rings(static_cast<PlainRings*>(nullptr)),
        benchmark::kMillisecond);
    addMove<RasterPlotPoints>("ours");
    addMove<vtkPlotPoints>("plain");
    addMove<NoPoints>("floor");
    add(
        "points/hover/ours",
        [](benchmark::State& state) { hover(state, false); },
        benchmark::kMicrosecond);
    add(
        "points/hover/first",
        [](benchmark::State& state) { hover(state, true); },
        benchmark::kMicrosecond);
    add("points/hover/plain", &hoverPlainly, benchmark::kMicrosecond);
    return true;
}();

} // namespace
