#pragma once

#include <dataviews/platform/data/Variable.h>

#include <vtkSmartPointer.h>

class vtkAbstractArray;

namespace analyzer {

class ReadProgress;

/// What a variable with the values in \p column, which has a name, is where the file does not say: an input with 2 to
/// 50 different values, at most half as many as there are cases; an identifier if it holds texts or whole numbers, a
/// different one in every case; else an output.
/// \throws ReadCancelled
[[nodiscard]] Variable::Nature variableNature(
    const vtkSmartPointer<vtkAbstractArray>& column, const ReadProgress& progress);

} // namespace analyzer
