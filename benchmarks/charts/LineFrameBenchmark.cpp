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
#include <vector>

#include <tests/support/OffScreenChart.h>

namespace {

constexpr int width = 1120;
constexpr int height = 720;
constexpr std::int64_t seriesCount = 5;

enum class Job
{
    Pan,
    PanAllSelected,
    SelectHalf
};

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
    explicit LineChart(std::int64_t count)
    {
        m_chart.view().GetRenderWindow()->SetMultiSamples(0);
        for (std::int64_t number = 0; number < seriesCount; ++number) {
            const vtkNew<Plot> plot;
            plot->SetInputData(series(count / seriesCount, number), 0, 1);
            plot->SetMarkerStyle(vtkPlotPoints::CIRCLE);
            plot->SetMarkerSize(5.0F);
            plot->SetWidth(2.0F);
            plot->SetColor(static_cast<unsigned char>(50 * number), 90, 200, 204);
            m_chart->AddPlot(plot);
            m_plots.emplace_back(plot);
        }
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
        m_chart->GetAxis(vtkAxis::LEFT)->SetBehavior(vtkAxis::FIXED);
        m_chart->GetAxis(vtkAxis::BOTTOM)->SetRange(shift, 1.0 + shift);
        m_chart->GetAxis(vtkAxis::LEFT)->SetRange(-5.0, 9.0);
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
    OffScreenChart<ChartXY> m_chart{width, height};
    std::vector<vtkSmartPointer<Plot>> m_plots;
};

template <class Plot>
void paint(benchmark::State& state, Job job)
{
    if (std::getenv("DISPLAY") == nullptr) {
        state.SkipWithError("Needs a display, such as xvfb-run gives.");
        return;
    }
    LineChart<Plot> chart(state.range(0));
    if (job == Job::PanAllSelected) {
        chart.select(0, 1);
    }
    std::int64_t step = 0;
    for (auto _ : state) {
        ++step;
        if (job == Job::SelectHalf) {
            state.PauseTiming();
            chart.select(step % 2, 2);
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
        name.c_str(), [job](benchmark::State& state) { paint<Plot>(state, job); })
        ->ArgName("points")
        ->RangeMultiplier(100)
        ->Range(10000, most)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
}

const bool isRegistered = [] {
    for (const Job job : {Job::Pan, Job::PanAllSelected, Job::SelectHalf}) {
        add<RingedPlotLine>("ours", job, 1000000);
        add<RingedPlotPoints>("points", job, 1000000); // without the lines
        add<NoLine>("floor", job, 1000000);
        // More would take minutes.
        add<vtkPlotLine>("plain", job, 10000);
    }
    return true;
}();

} // namespace
