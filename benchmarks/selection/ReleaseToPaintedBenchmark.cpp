#include <analyzer/selection/UndoableSelectionModel.h>
#include <analyzer/views/AxisMapping.h>
#include <analyzer/views/CaseTableView.h>
#include <analyzer/views/CaseTableWidget.h>
#include <analyzer/views/HoveredCase.h>
#include <analyzer/views/ImageMatrixView.h>
#include <analyzer/views/ScatterPlotView.h>
#include <analyzer/views/ViewServices.h>

#include <dataviews/common/charts/ChartXY.h>
#include <dataviews/common/images/ImageFileLoaderInterface.h>
#include <dataviews/common/images/ImageMatrixViewProperties.h>
#include <dataviews/common/images/ImageTableView.h>
#include <dataviews/common/images/QImageTableView.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/pipeline/DataPipelineManager.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <QApplication>
#include <QGridLayout>
#include <QMouseEvent>
#include <QWidget>

#include <vtkAxis.h>
#include <vtkDoubleArray.h>
#include <vtkNew.h>

#include <boost/make_shared.hpp>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <map>
#include <memory>
#include <random>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t caseCount = 1000000;

/// Two isolated points, for selections of one case.
constexpr std::array<double, 2> isolatedXs = {0.25, 0.75};
constexpr double isolatedY = 1.5;

/// Has no pictures.
class NoPictures : public ImageFileLoaderInterface
{
public:
    [[nodiscard]] boost::shared_ptr<QImage> image(const std::string& /*path*/) const override
    {
        return {};
    }
};

template <class Value>
void addVariable(Project& study, const char* name, Value value)
{
    const vtkNew<vtkDoubleArray> column;
    column->SetName(name);
    column->SetNumberOfValues(static_cast<vtkIdType>(study.caseCount()));
    for (std::size_t row = 0; row < study.caseCount(); ++row) {
        column->SetValue(static_cast<vtkIdType>(row), value(row));
    }
    study.addVariable(column.Get(), Variable::Input);
}

/// Whatever part of the axes is picked, its cases are scattered over the study.
void openStudy()
{
    Project study;
    study.setCaseCount(caseCount);
    std::mt19937 random(1);
    std::uniform_real_distribution<double> share(0.0, 1.0);
    addVariable(study, "x", [&](std::size_t row) {
        return row < isolatedXs.size() ? isolatedXs[row] : share(random);
    });
    addVariable(study, "y", [&](std::size_t row) {
        return row < isolatedXs.size() ? isolatedY : share(random);
    });
    for (const char* name : {"row", "column"}) {
        addVariable(
            study, name, [&](std::size_t /*row*/) { return std::floor(10.0 * share(random)); });
    }
    Project::project().replaceStudy(study);
}

/// Two charts, an image matrix and a table of a million cases in a window, and the user's mouse in the first chart.
class Views : public QObject
{
public:
    Views()
    {
        openStudy();
        m_pipeline = std::make_unique<DataPipelineManager>(Project::project());
        m_selection = boost::make_shared<analyzer::UndoableSelectionModel>();
        const auto hovered = boost::make_shared<analyzer::HoveredCase>();
        const analyzer::ViewServices services{*m_pipeline, m_selection, {}, {}, hovered};
        m_charts[0] = boost::make_shared<analyzer::ScatterPlotView>(services);
        m_charts[1] = boost::make_shared<analyzer::ScatterPlotView>(services);
        m_images = boost::make_shared<analyzer::ImageMatrixView>(
            *m_pipeline, m_selection, boost::make_shared<NoPictures>(), hovered);
        m_table = boost::make_shared<analyzer::CaseTableView>(*m_pipeline, m_selection, hovered);
        const Project& study = Project::project();
        m_charts[0]->xVariable()->setValue(study.variable("x"));
        m_charts[0]->yVariable()->setValue(study.variable("y"));
        m_charts[1]->xVariable()->setValue(study.variable("y"));
        m_charts[1]->yVariable()->setValue(study.variable("x"));
        m_images->properties().rowVar()->setValue(study.variable("row"));
        m_images->properties().columnVar()->setValue(study.variable("column"));

        auto* layout = new QGridLayout(&m_window);
        layout->addWidget(&m_charts[0]->widget(), 0, 0);
        layout->addWidget(&m_charts[1]->widget(), 0, 1);
        layout->addWidget(&m_images->widget(), 1, 0);
        layout->addWidget(&m_table->widget(), 1, 1);
        watch(m_charts[0]->widget());
        watch(m_charts[1]->widget());
        m_window.resize(1600, 1000);
        forgetPaintings();
        m_window.show();
        waitForPaintings();
    }

    Views(const Views&) = delete;
    Views& operator=(const Views&) = delete;

    ~Views() override
    {
        for (const auto& chart : m_charts) {
            chart->widget().setParent(nullptr);
        }
        m_images->widget().setParent(nullptr);
        m_table->widget().setParent(nullptr);
        m_charts = {};
        m_images.reset();
        m_table.reset();
        m_pipeline.reset();
        UndoStack::history().clear();
        Project nothing;
        Project::project().replaceStudy(nothing);
    }

    /// Drags a band around what lies between the two corners, in the units of the axes, and lets go. Gives the
    /// milliseconds from the release to the end of the last painting; \p toldMs those until all views have the selection.
    double select(double left, double bottom, double right, double top, double& toldMs)
    {
        const QPoint from = place(left, bottom);
        const QPoint to = place(right, top);
        send(QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::LeftButton);
        send(QEvent::MouseMove, (from + to) / 2, Qt::NoButton, Qt::LeftButton);
        send(QEvent::MouseMove, to, Qt::NoButton, Qt::LeftButton);
        QCoreApplication::processEvents();
        forgetPaintings();
        const Clock::time_point start = Clock::now();
        send(QEvent::MouseButtonRelease, to, Qt::LeftButton, Qt::NoButton);
        toldMs = millisecondsSince(start);
        waitForPaintings();
        return millisecondsSince(start);
    }

    [[nodiscard]] std::size_t selectedCount() const { return m_selection->cases()->size(); }

    void clear()
    {
        m_selection->setSelection({});
        QCoreApplication::processEvents();
        UndoStack::history().clear();
    }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Paint) {
            m_isPainted[watched] = true;
        }
        return QObject::eventFilter(watched, event);
    }

private:
    static double millisecondsSince(Clock::time_point start)
    {
        return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
    }

    void watch(QWidget& widget)
    {
        m_isPainted[&widget] = false;
        widget.installEventFilter(this);
    }

    void forgetPaintings()
    {
        for (auto& [widget, isPainted] : m_isPainted) {
            isPainted = false;
        }
    }

    void waitForPaintings()
    {
        const auto isPainted = [](const auto& entry) { return entry.second; };
        while (!std::all_of(m_isPainted.begin(), m_isPainted.end(), isPainted)) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
        // Grid and table are painted with the charts if the selection shows in them at all.
        QCoreApplication::processEvents();
    }

    [[nodiscard]] QPoint place(double x, double y) const
    {
        ChartXY& chart = m_charts[0]->chart();
        const analyzer::AxisMapping bottom(*chart.GetAxis(vtkAxis::BOTTOM), 0);
        const analyzer::AxisMapping left(*chart.GetAxis(vtkAxis::LEFT), 1);
        return {
            static_cast<int>(std::lround(bottom.toPixel(x))),
            static_cast<int>(std::lround(m_charts[0]->widget().height() - 1 - left.toPixel(y)))};
    }

    void send(
        QEvent::Type type, const QPoint& place, Qt::MouseButton button, Qt::MouseButtons buttons)
    {
        QWidget& chart = m_charts[0]->widget();
        QMouseEvent event(type, place, chart.mapToGlobal(place), button, buttons, Qt::NoModifier);
        QApplication::sendEvent(&chart, &event);
    }

    std::unique_ptr<DataPipelineManager> m_pipeline;
    boost::shared_ptr<analyzer::UndoableSelectionModel> m_selection;
    std::array<boost::shared_ptr<analyzer::ScatterPlotView>, 2> m_charts;
    boost::shared_ptr<analyzer::ImageMatrixView> m_images;
    boost::shared_ptr<analyzer::CaseTableView> m_table;
    QWidget m_window;
    std::map<QObject*, bool> m_isPainted;
};

double percentile95(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[std::min(values.size() - 1, values.size() * 95 / 100)];
}

/// How many cases a band picks.
enum class Share
{
    One,
    Percent,
    Half,
    All
};

void releaseToPainted(benchmark::State& state, Share share)
{
    if (std::getenv("DISPLAY") == nullptr) {
        state.SkipWithError("Needs a display, such as xvfb-run gives.");
        return;
    }
    Views views;
    std::vector<double> paintedMs;
    std::vector<double> toldMs;
    for (auto _ : state) {
        const std::size_t turn = paintedMs.size() % 2;
        const double start = turn == 0 ? 0.2 : 0.7;
        double told = 0.0;
        double painted = 0.0;
        switch (share) {
        case Share::One:
            painted =
                views.select(isolatedXs[turn] - 0.05, 1.4, isolatedXs[turn] + 0.05, 1.6, told);
            break;
        case Share::Percent:
            painted = views.select(start, 0.1, start + 0.1, 0.2, told);
            break;
        case Share::Half:
            painted = turn == 0 ? views.select(0.0, -0.02, 0.5, 1.02, told)
                                : views.select(0.5, -0.02, 1.0, 1.02, told);
            break;
        case Share::All:
            state.PauseTiming();
            views.clear();
            state.ResumeTiming();
            painted = views.select(0.0, 0.0, 1.0, 1.6, told);
            break;
        }
        paintedMs.push_back(painted);
        toldMs.push_back(told);
    }
    state.counters["p95_ms"] = percentile95(paintedMs);
    state.counters["told_p95_ms"] = percentile95(toldMs);
    state.counters["selected"] = static_cast<double>(views.selectedCount());
}

#define RELEASE_TO_PAINTED(NAME, SHARE)                                                            \
    BENCHMARK_CAPTURE(releaseToPainted, NAME, SHARE)                                               \
        ->Name("selection/release_to_painted/ours/" #NAME)                                         \
        ->Unit(benchmark::kMillisecond)                                                            \
        ->Iterations(40)

RELEASE_TO_PAINTED(one, Share::One);
RELEASE_TO_PAINTED(percent, Share::Percent);
RELEASE_TO_PAINTED(half, Share::Half);
RELEASE_TO_PAINTED(all, Share::All);

} // namespace
