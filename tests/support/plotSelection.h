#pragma once

#include <vtkIdTypeArray.h>
#include <vtkNew.h>
#include <vtkPlot.h>

#include <vector>

/// The selected rows of \p plot, in the order of its array.
inline std::vector<vtkIdType> selectedRows(vtkPlot& plot)
{
    vtkIdTypeArray* const rows = plot.GetSelection();
    if (rows == nullptr) {
        return {};
    }
    return {rows->GetPointer(0), rows->GetPointer(0) + rows->GetNumberOfTuples()};
}

inline void selectRows(vtkPlot& plot, const std::vector<vtkIdType>& rows)
{
    vtkNew<vtkIdTypeArray> array;
    for (const vtkIdType row : rows) {
        array->InsertNextValue(row);
    }
    plot.SetSelection(array);
}
