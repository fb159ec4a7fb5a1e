#pragma once

#include <vtkIdTypeArray.h>
#include <vtkIntArray.h>
#include <vtkSmartPointer.h>
#include <vtkTable.h>

#include <benchmark/benchmark.h>

#include <cstdint>
#include <set>

/// Tables of cases and selections that the benchmarks share. All of it is the same at every run.
namespace caseTables {

using Cases = std::set<unsigned long long>;

enum class IDOrder
{
    Ascending,
    Shuffled
};

/// The IDs 1 to \p rowCount.
[[nodiscard]] vtkSmartPointer<vtkIntArray> caseIDs(vtkIdType rowCount, IDOrder order);

/// caseIDs() in column 0, then "x" and "y", numbers between 0 and 1.
[[nodiscard]] vtkSmartPointer<vtkTable> recordTable(vtkIdType rowCount, IDOrder order);

/// \p count of the rows 0 to \p rowCount - 1, scattered at random, in ascending order as VTK lists them. Each \p pick is
/// another choice.
[[nodiscard]] vtkSmartPointer<vtkIdTypeArray> scatteredRows(
    vtkIdType rowCount, vtkIdType count, unsigned pick = 0);

/// A selection of \p count of the IDs 1 to \p rowCount, scattered at random, as a SelectionModel hands it out.
[[nodiscard]] Cases scatteredCases(vtkIdType rowCount, vtkIdType count, unsigned pick = 0);

/// How many of \p rowCount cases are \p permille of them; at 0 a single one.
[[nodiscard]] vtkIdType shareOf(vtkIdType rowCount, std::int64_t permille);

/// The cross product that the benchmarks of selections run over: rows; 0 (one case), 1 % and 50 % of them; IDs ascending
/// (0) and shuffled (1).
void selectionArguments(benchmark::internal::Benchmark* benchmark);

[[nodiscard]] inline IDOrder orderOf(std::int64_t argument)
{
    return argument == 0 ? IDOrder::Ascending : IDOrder::Shuffled;
}

} // namespace caseTables
