#pragma once

#include <vtkDoubleArray.h>
#include <vtkIntArray.h>

namespace analyzer {

/// Calls \p function with the values of \p column, as const double* or const int*. False, with nothing called, if the
/// column holds something else.
template <class Function>
bool withNumbers(vtkAbstractArray* column, Function function)
{
    if (auto* reals = vtkDoubleArray::SafeDownCast(column)) {
        function(static_cast<const double*>(reals->GetPointer(0)));
        return true;
    }
    if (auto* integers = vtkIntArray::SafeDownCast(column)) {
        function(static_cast<const int*>(integers->GetPointer(0)));
        return true;
    }
    return false;
}

} // namespace analyzer
