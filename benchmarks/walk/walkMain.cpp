#include <analyzer/AnalyzerApplication.h>

#include <QLoggingCategory>
#include <QSettings>
#include <QStandardPaths>
#include <QSurfaceFormat>
#include <QTemporaryDir>
#include <QVTKOpenGLNativeWidget.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <iomanip>
#include <iostream>
#include <string>
#include <vector>

#include <benchmarks/walk/Walk.h>
#include <benchmarks/walk/WalkStudy.h>
#include <benchmarks/walk/everyAction.h>

namespace {

constexpr std::size_t defaultCases = 1000000;

/// Each step as a benchmark of one iteration, so that it is filtered and written as the others are.
void registerSteps(const std::vector<Walk::Step>& steps, std::size_t cases)
{
    for (const Walk::Step& step : steps) {
        const std::string name = "walk/" + step.name + "/ours/cases:" + std::to_string(cases);
        benchmark::RegisterBenchmark(
            name.c_str(),
            [step](benchmark::State& state) {
                for (auto _ : state) {
                    constexpr double second = 1000.0; // milliseconds
                    state.SetIterationTime(step.untilIdleMs / second);
                }
                state.counters["longest_stall_ms"] = step.longestStallMs;
                for (const auto& [counter, value] : step.counters) {
                    state.counters[counter] = value;
                }
                state.SetLabel(step.cause);
                if (!step.problem.empty()) {
                    state.SkipWithError(step.problem.c_str());
                }
            })
            ->Iterations(1)
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond);
    }
}

void registerLongest(const std::vector<Walk::Step>& steps, std::size_t cases)
{
    Walk::Step longest;
    longest.name = "longest";
    for (const Walk::Step& step : steps) {
        longest.untilIdleMs += step.untilIdleMs;
        if (step.longestStallMs > longest.longestStallMs) {
            longest.longestStallMs = step.longestStallMs;
            longest.cause = step.name + ": " + step.cause;
        }
    }
    registerSteps({longest}, cases);
}

void printByStall(std::vector<Walk::Step> steps)
{
    std::stable_sort(
        steps.begin(), steps.end(), [](const Walk::Step& left, const Walk::Step& right) {
            return left.longestStallMs > right.longestStallMs;
        });
    std::cout << "\nlongest stall  until idle  action: what ran\n" << std::fixed;
    for (const Walk::Step& step : steps) {
        std::cout << std::setw(10) << std::setprecision(1) << step.longestStallMs << " ms"
                  << std::setw(9) << std::setprecision(0) << step.untilIdleMs << " ms  "
                  << step.name << ": " << step.cause
                  << (step.problem.empty() ? "" : " — " + step.problem) << '\n';
    }
    std::cout << std::flush;
}

/// The number after --cases=, which it takes off the arguments.
std::size_t caseCount(int& argc, char** argv)
{
    const std::string option = "--cases=";
    std::size_t cases = defaultCases;
    char** const end = std::remove_if(argv + 1, argv + argc, [&](const char* argument) {
        const std::string text = argument;
        if (text.compare(0, option.size(), option) != 0) {
            return false;
        }
        cases = std::stoul(text.substr(option.size()));
        return true;
    });
    argc = static_cast<int>(end - argv);
    return cases;
}

} // namespace

/// The walk through everything that the analyzer can do, with a million cases or --cases=COUNT. It needs a display.
int main(int argc, char** argv)
{
    const QTemporaryDir settings;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());
    QCoreApplication::setOrganizationName(QStringLiteral("DataViews"));
    QCoreApplication::setApplicationName(QStringLiteral("DataViewsWalk"));
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    QSurfaceFormat::setDefaultFormat(QVTKOpenGLNativeWidget::defaultFormat());
    analyzer::AnalyzerApplication application(argc, argv);
    try {
        const std::size_t cases = caseCount(argc, argv);
        benchmark::Initialize(&argc, argv);
        if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
            return EXIT_FAILURE;
        }
        const WalkStudy study(cases);
        Walk walk(application);
        walk.window().resize(1600, 1000);
        walk.window().show();
        doEveryAction(walk, study);
        registerSteps(walk.steps(), cases);
        registerLongest(walk.steps(), cases);
        benchmark::RunSpecifiedBenchmarks();
        benchmark::Shutdown();
        printByStall(walk.steps());
    } catch (const std::exception& error) {
        std::cerr << "dataviews-walk: " << error.what() << std::endl;
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
