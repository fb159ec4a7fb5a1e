#pragma once

#include <dataviews/platform/selection/SelectionModel.h>

#include <vtkDoubleArray.h>
#include <vtkIntArray.h>
#include <vtkSmartPointer.h>
#include <vtkStringArray.h>
#include <vtkTable.h>

#include <set>
#include <string>
#include <vector>

namespace caseTableTest {

using Cases = std::set<unsigned long long>;

template <class Array, class Value>
vtkSmartPointer<Array> column(const std::string& name, const std::vector<Value>& values)
{
    auto result = vtkSmartPointer<Array>::New();
    result->SetName(name.c_str());
    for (const Value& value : values) {
        result->InsertNextValue(value);
    }
    return result;
}

inline std::vector<int> denseIDs(int count)
{
    std::vector<int> result;
    for (int id = 1; id <= count; ++id) {
        result.push_back(id);
    }
    return result;
}

inline vtkSmartPointer<vtkTable> table(
    const std::vector<vtkSmartPointer<vtkAbstractArray>>& columns)
{
    auto result = vtkSmartPointer<vtkTable>::New();
    for (const auto& array : columns) {
        result->AddColumn(array);
    }
    return result;
}

/// Cases with a number "x" that comes down from 0 as the IDs go up, in steps of \p step.
inline vtkSmartPointer<vtkTable> fallingTable(const std::vector<int>& ids, double step = 1.0)
{
    std::vector<double> values;
    for (const int id : ids) {
        values.push_back(-step * id);
    }
    return table({column<vtkIntArray>("Case ID", ids), column<vtkDoubleArray>("x", values)});
}

/// A master that counts how often it is written.
class CountingMaster : public SelectionModel
{
public:
    void setSelection(const Cases& cases) override
    {
        ++writes;
        SelectionModel::setSelection(cases);
    }

    void takeCases(const SharedCases& cases) override
    {
        ++writes;
        SelectionModel::takeCases(cases);
    }

    int writes = 0;
};

} // namespace caseTableTest
