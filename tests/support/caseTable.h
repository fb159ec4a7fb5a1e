#pragma once

#include <vtkDoubleArray.h>
#include <vtkIntArray.h>
#include <vtkNew.h>
#include <vtkSmartPointer.h>
#include <vtkTable.h>

#include <cstddef>
#include <vector>

/// A record table with the columns "Case", "x" and "y"; x and y are the number of the row where none are given.
inline vtkSmartPointer<vtkTable> caseTable(
    const std::vector<int>& caseIDs,
    const std::vector<double>& xs = {},
    const std::vector<double>& ys = {})
{
    vtkNew<vtkIntArray> ids;
    vtkNew<vtkDoubleArray> x;
    vtkNew<vtkDoubleArray> y;
    ids->SetName("Case");
    x->SetName("x");
    y->SetName("y");
    for (std::size_t row = 0; row < caseIDs.size(); ++row) {
        ids->InsertNextValue(caseIDs[row]);
        x->InsertNextValue(xs.empty() ? static_cast<double>(row) : xs[row]);
        y->InsertNextValue(ys.empty() ? static_cast<double>(row) : ys[row]);
    }
    auto table = vtkSmartPointer<vtkTable>::New();
    table->AddColumn(ids);
    table->AddColumn(x);
    table->AddColumn(y);
    return table;
}
