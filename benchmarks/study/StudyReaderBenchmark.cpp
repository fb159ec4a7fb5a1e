#include <analyzer/study/ReadProgress.h>
#include <analyzer/study/StudyReader.h>

#include <QDir>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <string>

#include <csv.h>

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

void readNumbers(benchmark::State& state)
{
    const NumbersFile file(state.range(0));
    for (auto _ : state) {
        analyzer::ReadProgress progress;
        const analyzer::ReadStudy study = analyzer::readStudy(file.path(), progress);
        benchmark::DoNotOptimize(study.project->caseCount());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0) * columnCount);
}

/// The floor: libcsv takes the same text apart in memory and nobody looks at the fields.
void parseByLibcsv(benchmark::State& state)
{
    const std::string text = NumbersFile(state.range(0)).text();
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
    state.SetItemsProcessed(state.iterations() * state.range(0) * columnCount);
}

BENCHMARK(readNumbers)
    ->Name("study/read/ours")
    ->ArgName("rows")
    ->RangeMultiplier(10)
    ->Range(100, 100000)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(parseByLibcsv)
    ->Name("study/read/libcsv")
    ->ArgName("rows")
    ->RangeMultiplier(10)
    ->Range(100, 100000)
    ->Unit(benchmark::kMicrosecond);

} // namespace
