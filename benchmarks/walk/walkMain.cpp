#include <analyzer/AnalyzerApplication.h>

#include <QLoggingCategory>
#include <QSettings>
#include <QStandardPaths>
#include <QSurfaceFormat>
#include <QTemporaryDir>
#include <QVTKOpenGLNativeWidget.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <exception>
#include <iomanip>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include <benchmarks/walk/Walk.h>
#include <benchmarks/walk/WalkStudy.h>
#include <benchmarks/walk/everyAction.h>
#include <time.h>

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

/// The CPU time of the thread that asks.
analyzer::StallWatchdog::Clock cpuClock()
{
    return [] {
        timespec time{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
    };
}

/// What follows \p option, such as "--cases=", which it takes off the arguments; empty if it is not there.
std::string take(const std::string& option, int& argc, char** argv)
{
    std::string value;
    char** const end = std::remove_if(argv + 1, argv + argc, [&](const char* argument) {
        const std::string text = argument;
        if (text.compare(0, option.size(), option) != 0) {
            return false;
        }
        value = text.substr(option.size());
        return true;
    });
    argc = static_cast<int>(end - argv);
    return value;
}

std::vector<std::string> split(const std::string& text)
{
    std::vector<std::string> parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, ',');) {
        parts.push_back(part);
    }
    return parts;
}

} // namespace

/// The walk through everything that the analyzer can do. It needs a display. --cases=COUNT is for a study of another size
/// than a million cases, --views=KIND,KIND for some views alone, --clock=cpu for stalls in CPU time of the GUI thread, on a
/// machine that does other work.
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
        const std::string count = take("--cases=", argc, argv);
        const std::size_t cases = count.empty() ? defaultCases : std::stoul(count);
        const std::vector<std::string> kinds = split(take("--views=", argc, argv));
        const bool usesCpuTime = take("--clock=", argc, argv) == "cpu";
        benchmark::Initialize(&argc, argv);
        if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
            return EXIT_FAILURE;
        }
        const WalkStudy study(cases);
        Walk walk(application, usesCpuTime ? cpuClock() : analyzer::StallWatchdog::steadyClock());
        walk.window().resize(1600, 1000);
        walk.window().show();
        doEveryAction(walk, study, kinds);
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
