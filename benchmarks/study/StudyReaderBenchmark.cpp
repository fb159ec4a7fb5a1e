#include <analyzer/study/ReadCancelled.h>
#include <analyzer/study/ReadProgress.h>
#include <analyzer/study/StudyReader.h>

#include <QDir>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>

#include <csv.h>
#include <fast_float/fast_float.h>
#include <malloc.h>

namespace {

constexpr int columnCount = 10;

/// A study of random numbers in a folder of its own, which vanishes with it.
class NumbersFile
{
public:
    explicit NumbersFile(std::int64_t rowCount)
        : m_path(QDir(m_folder.path()).filePath(QStringLiteral("data.csv")).toStdString())
    {
        std::mt19937 generator(5);
        std::uniform_real_distribution<double> distribution(-1000.0, 1000.0);
        std::ofstream file(m_path);
        for (int column = 0; column < columnCount; ++column) {
            file << (column == 0 ? "" : ",") << "v" << column;
        }
        file << '\n';
        for (std::int64_t row = 0; row < rowCount; ++row) {
            for (int column = 0; column < columnCount; ++column) {
                file << (column == 0 ? "" : ",") << distribution(generator);
            }
            file << '\n';
        }
        file.close();
        if (!file) {
            throw std::runtime_error("The file " + m_path + " could not be written.");
        }
    }

    [[nodiscard]] const std::string& path() const { return m_path; }

    [[nodiscard]] std::string text() const
    {
        std::ifstream file(m_path);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }

private:
    QTemporaryDir m_folder;
    std::string m_path;
};

/// One for each number of rows, made once: that takes longer than reading it.
const NumbersFile& numbersFile(std::int64_t rowCount)
{
    static std::map<std::int64_t, std::unique_ptr<NumbersFile>> files;
    std::unique_ptr<NumbersFile>& file = files[rowCount];
    if (!file) {
        file = std::make_unique<NumbersFile>(rowCount);
    }
    return *file;
}

/// The largest amount of memory that this process had resident since the last reset(), where the system tells.
class PeakMemory
{
public:
    /// What the program has freed counts no longer: it would be used anew, and seem to cost nothing.
    static void reset()
    {
        malloc_trim(0);
        std::ofstream("/proc/self/clear_refs") << "5";
    }

    static double bytes()
    {
        std::ifstream status("/proc/self/status");
        for (std::string word; status >> word;) {
            if (word == "VmHWM:") {
                double kibibytes = 0.0;
                status >> kibibytes;
                constexpr double bytesPerKibibyte = 1024.0;
                return kibibytes * bytesPerKibibyte;
            }
        }
        return 0.0;
    }
};

void setItems(benchmark::State& state)
{
    state.SetItemsProcessed(state.iterations() * state.range(0) * columnCount);
}

/// `peak_per_columns` is the memory that reading takes at most, as a multiple of what the finished columns have.
void read(benchmark::State& state, const analyzer::StudyReader& reader)
{
    const NumbersFile& file = numbersFile(state.range(0));
    const double columnBytes = static_cast<double>(state.range(0))
        * static_cast<double>(columnCount * sizeof(double) + sizeof(int));
    double peak = 0.0;
    for (auto _ : state) {
        state.PauseTiming();
        PeakMemory::reset();
        const double before = PeakMemory::bytes();
        state.ResumeTiming();
        analyzer::ReadProgress progress;
        {
            const analyzer::ReadStudy study = reader.read(file.path(), progress);
            benchmark::DoNotOptimize(study.project->caseCount());
            state.PauseTiming();
            peak = std::max(peak, PeakMemory::bytes() - before);
            state.ResumeTiming();
        }
    }
    state.counters["peak_per_columns"] = peak / columnBytes;
    setItems(state);
}

void readInBlocks(benchmark::State& state)
{
    read(state, analyzer::StudyReader());
}

void readFromEndToEnd(benchmark::State& state)
{
    read(state, analyzer::StudyReader(analyzer::TableFile::defaultChunkBytes));
}

/// libcsv takes the same text apart in memory, and nobody looks at the fields.
void parseWithLibcsv(benchmark::State& state)
{
    const std::string text = numbersFile(state.range(0)).text();
    for (auto _ : state) {
        csv_parser parser;
        csv_init(&parser, 0);
        const std::size_t done = csv_parse(
            &parser,
            text.data(),
            text.size(),
            [](void*, std::size_t, void*) {},
            [](int, void*) {},
            nullptr);
        benchmark::DoNotOptimize(done);
        csv_free(&parser);
    }
    setItems(state);
}

/// fast_float reads the numbers of the same text in memory, one behind the other.
void parseWithFastFloat(benchmark::State& state)
{
    const std::string text = numbersFile(state.range(0)).text();
    for (auto _ : state) {
        const char* place = text.data() + text.find('\n') + 1;
        const char* const end = text.data() + text.size();
        double sum = 0.0;
        while (place < end) {
            double value = 0.0;
            place = fast_float::from_chars(place, end, value).ptr + 1;
            sum += value;
        }
        benchmark::DoNotOptimize(sum);
    }
    setItems(state);
}

/// From the call of cancel(), so many percent of the way, until the reader has let go of everything.
void cancel(benchmark::State& state)
{
    const NumbersFile& file = numbersFile(state.range(0));
    const double fraction = static_cast<double>(state.range(1)) / 100.0;
    using Clock = std::chrono::steady_clock;
    double longest = 0.0;
    for (auto _ : state) {
        analyzer::ReadProgress progress;
        std::atomic<bool> isOver{false};
        std::thread reading([&] {
            try {
                const analyzer::ReadStudy study = analyzer::readStudy(file.path(), progress);
                benchmark::DoNotOptimize(study.project->caseCount());
            } catch (const analyzer::ReadCancelled&) {
                benchmark::ClobberMemory();
            }
            isOver = true;
        });
        while (!isOver && progress.fraction() < fraction) {
            std::this_thread::sleep_for(std::chrono::microseconds(100));
        }
        const Clock::time_point begin = Clock::now();
        progress.cancel();
        reading.join();
        const double seconds = std::chrono::duration<double>(Clock::now() - begin).count();
        state.SetIterationTime(seconds);
        longest = std::max(longest, seconds);
    }
    constexpr double millisecondsPerSecond = 1000.0;
    state.counters["longest_ms"] = longest * millisecondsPerSecond;
}

void sizes(benchmark::internal::Benchmark* benchmark)
{
    benchmark->ArgName("rows")
        ->RangeMultiplier(100)
        ->Range(100, 1000000)
        ->Unit(benchmark::kMillisecond)
        ->MeasureProcessCPUTime()
        ->UseRealTime();
}

BENCHMARK(readInBlocks)->Name("study/read/ours")->Apply(sizes);
BENCHMARK(readFromEndToEnd)->Name("study/read/end_to_end")->Apply(sizes);
BENCHMARK(parseWithLibcsv)->Name("study/read/libcsv")->Apply(sizes);
BENCHMARK(parseWithFastFloat)->Name("study/read/fast_float")->Apply(sizes);
BENCHMARK(cancel)
    ->Name("study/cancel/ours")
    ->ArgNames({"rows", "percent"})
    ->ArgsProduct({{1000000}, {1, 30, 60, 79, 95}})
    ->Unit(benchmark::kMillisecond)
    ->Iterations(5)
    ->UseManualTime();

} // namespace
