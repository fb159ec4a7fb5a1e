#include <analyzer/export/writeCasesCsv.h>

#include <dataviews/platform/data/Project.h>

#include <QTemporaryDir>

#include <vtkDelimitedTextWriter.h>
#include <vtkDoubleArray.h>
#include <vtkNew.h>
#include <vtkTable.h>

#include <benchmark/benchmark.h>

#include <charconv>
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
void writeCases(benchmark::State& state)
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
void writeWithVtk(benchmark::State& state)
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

/// The floor: the digits alone, of all numbers, in memory.
void makeDigits(benchmark::State& state)
{
    Project project;
    fill(project, static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        for (const WeakPtr<Variable>& variable : project.variables()) {
            const vtkDoubleArray& column = *variable.lock()->realColumn();
            constexpr std::size_t enough = 32;
            char text[enough];
            for (vtkIdType row = 0; row < column.GetNumberOfTuples(); ++row) {
                benchmark::DoNotOptimize(
                    std::to_chars(text, text + enough, column.GetValue(row)).ptr);
            }
        }
    }
    state.SetItemsProcessed(state.iterations() * state.range(0) * columnCount);
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

BENCHMARK(writeCases)->Name("study/write_csv/ours")->Apply(sizes);
BENCHMARK(writeWithVtk)->Name("study/write_csv/vtk")->Apply(sizes);
BENCHMARK(makeDigits)->Name("study/write_csv/to_chars")->Apply(sizes);

} // namespace
