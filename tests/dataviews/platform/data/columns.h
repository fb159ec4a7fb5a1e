#pragma once

#include <vtkDoubleArray.h>
#include <vtkIntArray.h>
#include <vtkSmartPointer.h>
#include <vtkStringArray.h>

#include <string>
#include <vector>

/// Columns of a study, written out.

inline vtkSmartPointer<vtkDoubleArray> realColumn(
    const std::string& name, const std::vector<double>& values)
{
    auto column = vtkSmartPointer<vtkDoubleArray>::New();
    column->SetName(name.c_str());
    for (const double value : values) {
        column->InsertNextValue(value);
    }
    return column;
}

inline vtkSmartPointer<vtkIntArray> integerColumn(
    const std::string& name, const std::vector<int>& values)
{
    auto column = vtkSmartPointer<vtkIntArray>::New();
    column->SetName(name.c_str());
    for (const int value : values) {
        column->InsertNextValue(value);
    }
    return column;
}

inline vtkSmartPointer<vtkStringArray> textColumn(
    const std::string& name, const std::vector<std::string>& values)
{
    auto column = vtkSmartPointer<vtkStringArray>::New();
    column->SetName(name.c_str());
    for (const std::string& value : values) {
        column->InsertNextValue(value);
    }
    return column;
}
