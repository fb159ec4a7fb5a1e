#include <dataviews/common/charts/ChartXY.h>
#include <dataviews/common/charts/RingedPlotLine.h>
#include <dataviews/common/charts/RingedPlotPoints.h>

#include <vtkAxis.h>
#include <vtkDoubleArray.h>
#include <vtkIdTypeArray.h>
#include <vtkObjectFactory.h>
#include <vtkPlotLine.h>
#include <vtkPlotPoints.h>
#include <vtkTable.h>

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <tests/support/OffScreenChart.h>

namespace {

enum class Job
{
    Pan,
    PanAllSelected,
    SelectHalf,
    SelectFew
};

struct Frame
{
    int width;
    int height;
    std::int64_t seriesCount;
};

constexpr Frame smallFrame = {1120, 720, 5};
constexpr Frame largeFrame = {1600, 1000, 8};

/// A series of \p count values around a height of its own, by time.
vtkSmartPointer<vtkTable> series(std::int64_t count, std::int64_t number)
{
    std::mt19937 random(static_cast<unsigned>(number));
    std::normal_distribution<double> value(static_cast<double>(number), 1.0);
    const vtkNew<vtkDoubleArray> x;
    const vtkNew<vtkDoubleArray> y;
    x->SetName("x");
    y->SetName("y");
    for (std::int64_t row = 0; row < count; ++row) {
        x->InsertNextValue(static_cast<double>(row) / static_cast<double>(count));
        y->InsertNextValue(value(random));
    }
    auto table = vtkSmartPointer<vtkTable>::New();
    table->AddColumn(x);
    table->AddColumn(y);
    return table;
}

/// Nothing in the chart: what a frame costs whatever is in it.
class NoLine : public vtkPlotLine
{
public:
    vtkTypeMacro(NoLine, vtkPlotLine) static NoLine* New() { VTK_STANDARD_NEW_BODY(NoLine); }

    bool Paint(vtkContext2D* /*painter*/) override { return true; }
};

/// The points of some lines, \p Plot for each line, in one chart.
template <class Plot>
class LineChart
{
public:
    LineChart(const Frame& frame, std::int64_t count)
        : m_chart(frame.width, frame.height)
    {
        m_chart.view().GetRenderWindow()->SetMultiSamples(0);
        for (std::int64_t number = 0; number < frame.seriesCount; ++number) {
            const vtkNew<Plot> plot;
            plot->SetInputData(series(count / frame.seriesCount, number), 0, 1);
            plot->SetMarkerStyle(vtkPlotPoints::CIRCLE);
            plot->SetMarkerSize(5.0F);
            plot->SetWidth(2.0F);
            plot->SetColor(static_cast<unsigned char>(30 * number), 90, 200, 204);
            m_chart->AddPlot(plot);
            m_plots.emplace_back(plot);
        }
        m_chart->GetAxis(vtkAxis::LEFT)->SetBehavior(vtkAxis::FIXED);
        m_chart->GetAxis(vtkAxis::LEFT)
            ->SetRange(-5.0, static_cast<double>(frame.seriesCount) + 4.0);
        setShift(0.0);
        render();
        render();
    }

    LineChart(const LineChart&) = delete;
    LineChart& operator=(const LineChart&) = delete;

    ~LineChart()
    {
        for (const auto& plot : m_plots) {
            m_chart->RemovePlotInstance(plot);
        }
    }

    void setShift(double shift)
    {
        m_chart->GetAxis(vtkAxis::BOTTOM)->SetBehavior(vtkAxis::FIXED);
        m_chart->GetAxis(vtkAxis::BOTTOM)->SetRange(shift, 1.0 + shift);
    }

    /// Every \p step th row from \p first on.
    void select(std::int64_t first, std::int64_t step)
    {
        for (const auto& plot : m_plots) {
            const vtkNew<vtkIdTypeArray> rows;
            for (vtkIdType row = first; row < plot->GetInput()->GetNumberOfRows(); row += step) {
                rows->InsertNextValue(row);
            }
            plot->SetSelection(rows);
        }
    }

    void render()
    {
        m_chart->GetScene()->SetDirty(true);
        m_chart.render();
        m_chart.view().GetRenderWindow()->WaitForCompletion();
    }

private:
    OffScreenChart<ChartXY> m_chart;
    std::vector<vtkSmartPointer<Plot>> m_plots;
};

template <class Plot>
void paint(benchmark::State& state, Job job, const Frame& frame, std::int64_t count)
{
    if (std::getenv("DISPLAY") == nullptr) {
        state.SkipWithError("Needs a display, such as xvfb-run gives.");
        return;
    }
    LineChart<Plot> chart(frame, count);
    if (job == Job::PanAllSelected) {
        chart.select(0, 1);
    }
    std::int64_t step = 0;
    for (auto _ : state) {
        ++step;
        if (job == Job::SelectHalf || job == Job::SelectFew) {
            const std::int64_t share = job == Job::SelectHalf ? 2 : 1000;
            state.PauseTiming();
            chart.select(step % share, share);
            state.ResumeTiming();
        } else {
            chart.setShift(0.002 * static_cast<double>(step % 50));
        }
        chart.render();
    }
}

template <class Plot>
void add(const std::string& variant, Job job, std::int64_t most)
{
    const char* const names[] = {"pan", "pan_all_selected", "select_half"};
    const std::string name =
        std::string("charts/line_") + names[static_cast<std::size_t>(job)] + '/' + variant;
    benchmark::RegisterBenchmark(
        name.c_str(),
        [job](benchmark::State& state) { paint<Plot>(state, job, smallFrame, state.range(0)); })
        ->ArgName("points")
        ->RangeMultiplier(100)
        ->Range(10000, most)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
}

/// Some series in a window that fills a screen.
template <class Plot>
void addLarge(const std::string& variant, std::int64_t most)
{
    const std::pair<const char*, Job> jobs[] = {
        {"paint", Job::Pan},
        {"paint_selected", Job::PanAllSelected},
        {"select", Job::SelectFew},
        {"select_half", Job::SelectHalf}};
    for (const auto& [name, job] : jobs) {
        benchmark::RegisterBenchmark(
            (std::string("lines/") + name + '/' + variant).c_str(),
            [job = job](benchmark::State& state) {
                paint<Plot>(state, job, largeFrame, state.range(1));
            })
            ->ArgNames({"series", "points"})
            ->Args({largeFrame.seriesCount, most})
            ->MeasureProcessCPUTime() // of all threads
            ->Unit(benchmark::kMillisecond)
            ->UseRealTime();
    }
}

const bool isRegistered = [] {
    for (const Job job : {Job::Pan, Job::PanAllSelected, Job::SelectHalf}) {
        add<RingedPlotLine>("ours", job, 1000000);
        add<RingedPlotPoints>("points", job, 1000000); // without the lines
        add<NoLine>("floor", job, 1000000);
        // More would take minutes.
        add<vtkPlotLine>("plain", job, 10000);
    }
    addLarge<RingedPlotLine>("ours", 1000000);
    addLarge<RingedPlotPoints>("points", 1000000);
    addLarge<NoLine>("floor", 1000000);
    addLarge<vtkPlotLine>("plain", 10000);
    return true;
}();

} // namespace
