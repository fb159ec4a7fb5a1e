#include <analyzer/study/ReadProgress.h>
#include <analyzer/study/variableNature.h>

#include <vtkDoubleArray.h>
#include <vtkStringArray.h>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>

using analyzer::ReadProgress;
using analyzer::variableNature;

namespace {

vtkSmartPointer<vtkAbstractArray> numbers(int count, const std::function<double(int)>& value)
{
    auto column = vtkSmartPointer<vtkDoubleArray>::New();
    column->SetName("x");
    for (int row = 0; row < count; ++row) {
        column->InsertNextValue(value(row));
    }
    return column;
}

vtkSmartPointer<vtkAbstractArray> texts(int count, const std::function<int(int)>& value)
{
    auto column = vtkSmartPointer<vtkStringArray>::New();
    column->SetName("x");
    for (int row = 0; row < count; ++row) {
        column->InsertNextValue("text " + std::to_string(value(row)));
    }
    return column;
}

} // namespace

TEST(variableNatureTest, FollowsTheValues)
{
    const ReadProgress progress;

    struct Case
    {
        const char* values;
        vtkSmartPointer<vtkAbstractArray> column;
        Variable::Nature nature;
    };

    for (const Case& expected :
         {Case{
              "two values in four cases",
              numbers(4, [](int row) { return row % 2; }),
              Variable::Input},
          Case{
              "two values in three cases",
              numbers(3, [](int row) { return row % 2; }),
              Variable::Output},
          Case{"one value", numbers(9, [](int) { return 1.0; }), Variable::Output},
          Case{
              "50 values in 100 cases",
              numbers(100, [](int row) { return row % 50; }),
              Variable::Input},
          Case{
              "51 values in 200 cases",
              numbers(200, [](int row) { return row % 51; }),
              Variable::Output},
          Case{"few reals", numbers(8, [](int row) { return 0.25 * (row % 3); }), Variable::Input},
          Case{
              "different whole numbers",
              numbers(1000, [](int row) { return 1000.0 - row; }),
              Variable::Identifier},
          Case{
              "all but the last differ",
              numbers(1000, [](int row) { return row % 999; }),
              Variable::Output},
          Case{
              "different reals",
              numbers(1000, [](int row) { return row + 0.5; }),
              Variable::Output},
          Case{
              "one is missing",
              numbers(1000, [](int row) { return row == 7 ? std::nan("") : row; }),
              Variable::Output},
          Case{"all are missing", numbers(10, [](int) { return std::nan(""); }), Variable::Output},
          Case{"different texts", texts(1000, [](int row) { return row; }), Variable::Identifier},
          Case{"a text twice", texts(1000, [](int row) { return row % 999; }), Variable::Output},
          Case{"few texts", texts(10, [](int row) { return row % 5; }), Variable::Input}}) {
        EXPECT_EQ(
            variableNature(Variable(expected.column, Variable::Output), progress), expected.nature)
            << expected.values;
    }
}
