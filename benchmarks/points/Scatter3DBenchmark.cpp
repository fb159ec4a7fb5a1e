#include <analyzer/views/Chart3DCamera.h>
#include <analyzer/views/PointColors.h>
#include <analyzer/views/Scatter3DPlot.h>
#include <analyzer/views/ScatterPlot3DView.h>
#include <analyzer/views/ViewServices.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/pipeline/DataPipelineManager.h>
#include <dataviews/platform/selection/SelectionModel.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <QApplication>
#include <QVTKOpenGLNativeWidget.h>

#include <vtkChartXYZ.h>
#include <vtkContextScene.h>
#include <vtkContextView.h>
#include <vtkDoubleArray.h>
#include <vtkIdTypeArray.h>
#include <vtkNew.h>
#include <vtkPen.h>
#include <vtkPlotPoints3D.h>
#include <vtkRenderWindow.h>
#include <vtkTable.h>

#include <boost/make_shared.hpp>

#include <benchmark/benchmark.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>

namespace {

constexpr int width = 1120;
constexpr int height = 720;
constexpr std::int64_t floorCount = 2;
constexpr std::array<const char*, 3> axes = {"x", "y", "z"};

enum class Job
{
    Turn,
    TurnColored,
    TurnSelected,
    Resize,
    Same,
    Select,
    Color
};

/// A cloud; \p hasGaps leaves out every tenth value.
vtkSmartPointer<vtkDoubleArray> randomColumn(const char* name, std::int64_t count, bool hasGaps)
{
    std::mt19937 random(static_cast<unsigned>(name[0]));
    std::normal_distribution<double> value(0.0, 1.0);
    auto column = vtkSmartPointer<vtkDoubleArray>::New();
    column->SetName(name);
    column->SetNumberOfValues(count);
    for (std::int64_t row = 0; row < count; ++row) {
        column->SetValue(
            row,
            hasGaps && row % 10 == 0 ? std::numeric_limits<double>::quiet_NaN() : value(random));
    }
    return column;
}

void openStudy(std::int64_t count)
{
    Project study;
    study.setCaseCount(static_cast<std::size_t>(count));
    for (const char* name : axes) {
        study.addVariable(randomColumn(name, count, false), Variable::Input);
    }
    for (const char* name : {"a", "b"}) {
        study.addVariable(randomColumn(name, count, true), Variable::Output);
    }
    Project::project().replaceStudy(study);
}

/// The 3-D chart of a study in a window.
class View3D
{
public:
    explicit View3D(std::int64_t count)
    {
        openStudy(count);
        m_pipeline = std::make_unique<DataPipelineManager>(Project::project());
        m_selection = boost::make_shared<SelectionModel>();
        m_view = boost::make_shared<analyzer::ScatterPlot3DView>(
            analyzer::ViewServices{*m_pipeline, m_selection, {}, {}, {}});
        m_view->xVariable()->setValue(Project::project().variable("x"));
        m_view->yVariable()->setValue(Project::project().variable("y"));
        m_view->zVariable()->setValue(Project::project().variable("z"));
        resize(width);
        m_view->widget().show();
        QApplication::processEvents();
        color("");
        render();
    }

    View3D(const View3D&) = delete;
    View3D& operator=(const View3D&) = delete;

    ~View3D()
    {
        m_view.reset();
        m_selection.reset();
        m_pipeline.reset();
        UndoStack::history().clear();
        Project nothing;
        Project::project().replaceStudy(nothing);
    }

    void resize(int pixels)
    {
        m_view->widget().resize(pixels, height);
        QApplication::processEvents();
    }

    void turn(double degrees) { m_view->camera()->setValue({degrees, 25.0, 1.0, 0.0, 0.0}); }

    void color(const std::string& variable)
    {
        m_view->colors().variable()->setValue(
            variable.empty() ? WeakPtr<Variable>() : Project::project().variable(variable));
        UndoStack::history().clear();
    }

    /// Every \p step th row from \p first on.
    void select(std::int64_t first, std::int64_t step)
    {
        const vtkNew<vtkIdTypeArray> rows;
        for (vtkIdType row = first; row < m_view->plot().GetInput()->GetNumberOfRows();
             row += step) {
            rows->InsertNextValue(row);
        }
        m_view->plot().SetSelection(rows);
    }

    void render()
    {
        m_view->render();
        static_cast<QVTKOpenGLNativeWidget&>(m_view->widget()).renderWindow()->WaitForCompletion();
    }

private:
    std::unique_ptr<DataPipelineManager> m_pipeline;
    boost::shared_ptr<SelectionModel> m_selection;
    boost::shared_ptr<analyzer::ScatterPlot3DView> m_view;
};

bool isWithoutDisplay(benchmark::State& state)
{
    const bool isWithout = std::getenv("DISPLAY") == nullptr;
    if (isWithout) {
        state.SkipWithError("Needs a display, such as xvfb-run gives.");
    }
    return isWithout;
}

/// A picture after each change.
void paint(benchmark::State& state, Job job, std::int64_t count)
{
    if (isWithoutDisplay(state)) {
        return;
    }
    View3D view(count);
    if (job == Job::TurnColored) {
        view.color("a");
    }
    if (job == Job::TurnSelected) {
        view.select(0, 1);
    }
    std::int64_t step = 0;
    for (auto _ : state) {
        ++step;
        switch (job) {
        case Job::Turn:
        case Job::TurnColored:
        case Job::TurnSelected:
            view.turn(static_cast<double>(step % 90));
            break;
        case Job::Resize:
            view.resize(width - static_cast<int>(step % 2) * 100);
            break;
        case Job::Select:
            state.PauseTiming();
            view.select(step % 2, 2);
            state.ResumeTiming();
            break;
        case Job::Color:
            view.color(step % 2 == 0 ? "a" : "b");
            break;
        case Job::Same:
            break;
        }
        view.render();
    }
}

/// VTK's own chart in three dimensions, whose points hide one another by a depth buffer.
void paintPlainly(benchmark::State& state)
{
    if (isWithoutDisplay(state)) {
        return;
    }
    const vtkNew<vtkTable> table;
    for (const char* name : axes) {
        table->AddColumn(randomColumn(name, state.range(0), false));
    }
    const vtkNew<vtkContextView> view;
    view->GetRenderWindow()->SetOffScreenRendering(1);
    view->GetRenderWindow()->SetMultiSamples(0);
    view->GetRenderWindow()->SetSize(width, height);
    const vtkNew<vtkChartXYZ> chart;
    const vtkNew<vtkPlotPoints3D> points;
    chart->SetGeometry(vtkRectf(100.0F, 60.0F, width - 200.0F, height - 120.0F));
    points->SetInputData(table, axes[0], axes[1], axes[2]);
    points->GetPen()->SetWidth(7.0F);
    points->GetPen()->SetColor(30, 90, 200, 204);
    chart->AddPlot(points);
    view->GetScene()->AddItem(chart);
    double step = 0.0;
    for (auto _ : state) {
        chart->SetAngle(++step);
        view->GetScene()->SetDirty(true);
        view->Render();
        view->GetRenderWindow()->WaitForCompletion();
    }
}

void sizes(benchmark::internal::Benchmark* registered)
{
    registered->ArgName("points")
        ->Arg(10000)
        ->Arg(1000000)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
}

const bool isRegistered = [] {
    const struct
    {
        const char* name;
        Job job;
    } jobs[] = {
        {"paint", Job::Turn},
        {"paint_colored", Job::TurnColored},
        {"paint_all_selected", Job::TurnSelected},
        {"resize", Job::Resize},
        {"paint_same", Job::Same},
        {"select_half", Job::Select},
        {"color", Job::Color}};

    for (const auto& entry : jobs) {
        const std::string name = std::string("points3d/") + entry.name;
        const Job job = entry.job;
        benchmark::RegisterBenchmark((name + "/ours").c_str(), [job](benchmark::State& state) {
            paint(state, job, state.range(0));
        })->Apply(sizes);
        benchmark::RegisterBenchmark((name + "/floor").c_str(), [job](benchmark::State& state) {
            paint(state, job, floorCount);
        })->Apply(sizes);
    }
    benchmark::RegisterBenchmark("points3d/paint/plain", &paintPlainly)->Apply(sizes);
    return true;
}();

} // namespace
