#pragma once

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/pipeline/FilterInterface.h>

#include <vtkDoubleArray.h>
#include <vtkIntArray.h>
#include <vtkSmartPointer.h>
#include <vtkStringArray.h>

#include <limits>
#include <string>
#include <vector>

/// Studies and readings that the tests of this folder share.
namespace pipelineTest {

constexpr double missing = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

inline WeakPtr<Variable> addNumbers(
    Project& project, const std::string& name, const std::vector<double>& values)
{
    const auto column = vtkSmartPointer<vtkDoubleArray>::New();
    column->SetName(name.c_str());
    for (const double value : values) {
        column->InsertNextValue(value);
    }
    return project.addVariable(column, Variable::Output);
}

inline WeakPtr<Variable> addTexts(
    Project& project, const std::string& name, const std::vector<std::string>& values)
{
    const auto column = vtkSmartPointer<vtkStringArray>::New();
    column->SetName(name.c_str());
    for (const std::string& value : values) {
        column->InsertNextValue(value);
    }
    return project.addVariable(column, Variable::Output);
}

inline RowBitmap bitmap(std::size_t rowCount, const std::vector<std::size_t>& rows)
{
    RowBitmap result(rowCount);
    for (const std::size_t row : rows) {
        result.set(row);
    }
    return result;
}

inline std::vector<std::size_t> rowsOf(const RowBitmap& bitmap)
{
    std::vector<std::size_t> rows;
    bitmap.forEach([&rows](std::size_t row) { rows.push_back(row); });
    return rows;
}

/// The rows that \p filter leaves of all cases of \p project.
inline std::vector<std::size_t> passing(const FilterInterface& filter, const Project& project)
{
    RowBitmap rows(project.caseCount(), true);
    filter.apply(project, rows);
    return rowsOf(rows);
}

} // namespace pipelineTest
