#include <dataviews/platform/selection/SelectionModel.h>

#include <vtkDoubleArray.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <vector>

#include <benchmarks/support/caseTables.h>

namespace caseTables {

namespace {

vtkSmartPointer<vtkDoubleArray> randomNumbers(const char* name, vtkIdType count, unsigned seed)
{
    std::mt19937 generator(seed);
    std::uniform_real_distribution<double> distribution(0.0, 1.0);
    auto numbers = vtkSmartPointer<vtkDoubleArray>::New();
    numbers->SetName(name);
    numbers->SetNumberOfValues(count);
    std::generate_n(numbers->GetPointer(0), count, [&] { return distribution(generator); });
    return numbers;
}

} // namespace

vtkSmartPointer<vtkIntArray> caseIDs(vtkIdType rowCount, IDOrder order)
{
    auto ids = vtkSmartPointer<vtkIntArray>::New();
    ids->SetName("Case ID");
    ids->SetNumberOfValues(rowCount);
    int* first = ids->GetPointer(0);
    std::iota(first, first + rowCount, 1);
    if (order == IDOrder::Shuffled) {
        std::shuffle(first, first + rowCount, std::mt19937(1));
    }
    return ids;
}

vtkSmartPointer<vtkTable> recordTable(vtkIdType rowCount, IDOrder order)
{
    auto table = vtkSmartPointer<vtkTable>::New();
    table->AddColumn(caseIDs(rowCount, order));
    table->AddColumn(randomNumbers("x", rowCount, 2));
    table->AddColumn(randomNumbers("y", rowCount, 3));
    return table;
}

vtkSmartPointer<vtkIdTypeArray> scatteredRows(vtkIdType rowCount, vtkIdType count, unsigned pick)
{
    std::vector<vtkIdType> all(static_cast<std::size_t>(rowCount));
    std::iota(all.begin(), all.end(), vtkIdType(0));
    auto rows = vtkSmartPointer<vtkIdTypeArray>::New();
    rows->SetNumberOfComponents(1);
    rows->SetNumberOfValues(count);
    // Of a range that is sorted, this picks in ascending order.
    std::sample(all.begin(), all.end(), rows->GetPointer(0), count, std::mt19937(4 + pick));
    return rows;
}

Cases scatteredCases(vtkIdType rowCount, vtkIdType count, unsigned pick)
{
    const vtkSmartPointer<vtkIdTypeArray> rows = scatteredRows(rowCount, count, pick);
    Cases cases;
    for (vtkIdType i = 0; i < count; ++i) {
        cases.insert(cases.end(), static_cast<unsigned long long>(rows->GetValue(i) + 1));
    }
    SelectionModel model;
    model.setSelection(cases);
    return model.getSelections();
}

vtkIdType shareOf(vtkIdType rowCount, std::int64_t permille)
{
    return std::max(vtkIdType(1), static_cast<vtkIdType>(rowCount * permille / 1000));
}

void selectionArguments(benchmark::internal::Benchmark* benchmark)
{
    benchmark->ArgNames({"rows", "permille", "shuffled"})
        ->ArgsProduct({benchmark::CreateRange(10000, 1000000, 10), {0, 10, 500}, {0, 1}});
}

} // namespace caseTables
