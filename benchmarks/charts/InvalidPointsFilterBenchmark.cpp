#include <dataviews/common/charts/InvalidPointsFilter.h>
#include <dataviews/common/views/Property.h>

#include <dataviews/platform/data/Variable.h>

#include <vtkCharArray.h>
#include <vtkDataSetAttributes.h>
#include <vtkDoubleArray.h>
#include <vtkTable.h>

#include <boost/make_shared.hpp>

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <benchmarks/support/caseTables.h>

using namespace caseTables;

namespace {

constexpr int variableCount = 10;
using Handle = InvalidPointsFilter::VariableHandle;

/// Case IDs and ten variables "0" to "9"; \p percent of the rows lack a value, in turns of one of the first three.
vtkSmartPointer<vtkTable> table(vtkIdType rowCount, std::int64_t percent)
{
    std::mt19937 generator(1);
    std::uniform_real_distribution<double> distribution(0.0, 1.0);
    auto table = vtkSmartPointer<vtkTable>::New();
    table->AddColumn(caseIDs(rowCount, IDOrder::Ascending));
    std::vector<double*> values;
    for (int i = 0; i < variableCount; ++i) {
        vtkNew<vtkDoubleArray> column;
        column->SetName(std::to_string(i).c_str());
        column->SetNumberOfValues(rowCount);
        values.push_back(column->GetPointer(0));
        table->AddColumn(column);
    }
    for (vtkIdType row = 0; row < rowCount; ++row) {
        for (double* column : values) {
            column[row] = distribution(generator);
        }
        if (distribution(generator) * 100.0 < static_cast<double>(percent)) {
            values[static_cast<std::size_t>(row % 3)][row] =
                std::numeric_limits<double>::quiet_NaN();
        }
    }
    return table;
}

/// X, Y and color of a chart.
std::vector<boost::shared_ptr<Variable>> shownVariables(vtkTable& table)
{
    std::vector<boost::shared_ptr<Variable>> variables;
    for (const char* name : {"0", "1", "2"}) {
        variables.push_back(
            boost::make_shared<Variable>(table.GetColumnByName(name), Variable::Output));
    }
    return variables;
}

void arguments(benchmark::internal::Benchmark* benchmark)
{
    benchmark->ArgNames({"rows", "percent"})
        ->ArgsProduct({benchmark::CreateRange(10000, 1000000, 10), {0, 5, 50}})
        ->Unit(benchmark::kMicrosecond);
}

void update(benchmark::State& state)
{
    const vtkSmartPointer<vtkTable> input = table(state.range(0), state.range(1));
    const auto shown = shownVariables(*input);
    std::vector<boost::shared_ptr<const InvalidPointsFilter::VariableProperty>> properties;
    for (const auto& variable : shown) {
        properties.push_back(boost::make_shared<corvane::Property<Handle>>(Handle(variable)));
    }
    const auto filter = InvalidPointsFilter::New(properties);
    filter->SetInputData(input);
    for (auto _ : state) {
        filter->Modified();
        filter->Update();
        benchmark::DoNotOptimize(filter->GetOutput()->GetNumberOfRows());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

/// One row after the other, each value through its column.
void copyTuples(benchmark::State& state)
{
    const vtkSmartPointer<vtkTable> input = table(state.range(0), state.range(1));
    const auto output = vtkSmartPointer<vtkTable>::New();
    std::vector<vtkDataArray*> from;
    for (vtkIdType i = 0; i < input->GetNumberOfColumns(); ++i) {
        from.push_back(vtkDataArray::SafeDownCast(input->GetColumn(i)));
    }
    for (auto _ : state) {
        output->GetRowData()->CopyStructure(input->GetRowData());
        output->SetNumberOfRows(input->GetNumberOfRows());
        std::vector<vtkDataArray*> to;
        for (vtkIdType i = 0; i < output->GetNumberOfColumns(); ++i) {
            to.push_back(vtkDataArray::SafeDownCast(output->GetColumn(i)));
        }
        vtkIdType next = 0;
        for (vtkIdType row = 0; row < input->GetNumberOfRows(); ++row) {
            if (std::isnan(from[1]->GetTuple1(row)) || std::isnan(from[2]->GetTuple1(row))
                || std::isnan(from[3]->GetTuple1(row))) {
                continue;
            }
            for (std::size_t i = 0; i < from.size(); ++i) {
                to[i]->SetTuple1(next, from[i]->GetTuple1(row));
            }
            ++next;
        }
        output->SetNumberOfRows(next);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

/// What the memory of the machine allows: all columns as they are, into memory that is there.
void copyMemory(benchmark::State& state)
{
    const vtkSmartPointer<vtkTable> input = table(state.range(0), state.range(1));
    const auto output = vtkSmartPointer<vtkTable>::New();
    output->DeepCopy(input);
    for (auto _ : state) {
        for (vtkIdType i = 0; i < input->GetNumberOfColumns(); ++i) {
            vtkAbstractArray& column = *input->GetColumn(i);
            const auto byteCount = static_cast<std::size_t>(column.GetNumberOfValues())
                * static_cast<std::size_t>(column.GetDataTypeSize());
            std::memcpy(
                output->GetColumn(i)->GetVoidPointer(0),
                input->GetColumn(i)->GetVoidPointer(0),
                byteCount);
        }
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

/// The three columns that are looked at, read once.
void lookOnce(benchmark::State& state)
{
    const vtkSmartPointer<vtkTable> input = table(state.range(0), state.range(1));
    for (auto _ : state) {
        std::size_t missing = 0;
        for (vtkIdType i = 1; i <= 3; ++i) {
            const double* values = vtkDoubleArray::SafeDownCast(input->GetColumn(i))->GetPointer(0);
            for (vtkIdType row = 0; row < state.range(0); ++row) {
                missing += std::isnan(values[row]) ? 1U : 0U;
            }
        }
        benchmark::DoNotOptimize(missing);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

BENCHMARK(update)->Name("points/undrawable/ours")->Apply(arguments);
BENCHMARK(copyTuples)->Name("points/undrawable/plain")->Apply(arguments);
BENCHMARK(copyMemory)->Name("points/undrawable/memory")->Apply(arguments);
BENCHMARK(lookOnce)->Name("points/undrawable/floor")->Apply(arguments);

} // namespace
