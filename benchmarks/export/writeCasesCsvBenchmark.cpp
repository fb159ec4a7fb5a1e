#include <analyzer/export/writeCasesCsv.h>

#include <dataviews/platform/data/Project.h>

#include <QTemporaryDir>

#include <vtkDelimitedTextWriter.h>
#include <vtkDoubleArray.h>
#include <vtkNew.h>
#include <vtkTable.h>

#include <benchmark/benchmark.h>

#include <cstddef>
#include <random>
#include <string>

namespace {

constexpr int columnCount = 10;

void fill(Project& project, std::size_t rowCount)
{
    std::mt19937 generator(5);
    std::uniform_real_distribution<double> distribution(-1000.0, 1000.0);
    project.setCaseCount(rowCount);
    for (int number = 0; number < columnCount; ++number) {
        vtkNew<vtkDoubleArray> column;
        column->SetName(("v" + std::to_string(number)).c_str());
        column->SetNumberOfValues(static_cast<vtkIdType>(rowCount));
        double* values = column->GetPointer(0);
        for (std::size_t row = 0; row < rowCount; ++row) {
            values[row] = distribution(generator);
        }
        project.addVariable(column.Get(), Variable::Output);
    }
}

std::string fileIn(const QTemporaryDir& folder)
{
    return folder.filePath(QStringLiteral("cases.csv")).toStdString();
}

/// All digits, and on the disk at the end.
void writeCsv(benchmark::State& state)
{
    const QTemporaryDir folder;
    Project project;
    fill(project, static_cast<std::size_t>(state.range(0)));
    const RowBitmap rows(project.caseCount(), true);
    for (auto _ : state) {
        analyzer::writeCasesCsv(project, rows, fileIn(folder));
    }
    state.SetItemsProcessed(state.iterations() * state.range(0) * columnCount);
}

/// What VTK has for the same table: six digits, and no care for the disk.
void writeCsvPlainly(benchmark::State& state)
{
    const QTemporaryDir folder;
    Project project;
    fill(project, static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        vtkNew<vtkDelimitedTextWriter> writer;
        writer->SetFileName(fileIn(folder).c_str());
        writer->SetInputData(&project.table());
        writer->Write();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0) * columnCount);
}

void sizes(benchmark::internal::Benchmark* benchmark)
{
    benchmark->ArgName("rows")
        ->RangeMultiplier(10)
        ->Range(100, 1000000)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
}

BENCHMARK(writeCsv)->Name("study/write_csv/ours")->Apply(sizes);
BENCHMARK(writeCsvPlainly)->Name("study/write_csv/plain")->Apply(sizes);

} // namespace
