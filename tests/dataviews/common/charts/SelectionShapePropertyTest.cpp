#include <dataviews/common/charts/ChartXY.h>
#include <dataviews/common/charts/SelectionShapeProperty.h>
#include <dataviews/common/charts/VTKChartsMouseModeProperty.h>

#include <gtest/gtest.h>

#include <vector>

namespace {

TEST(SelectionShapePropertyTest, ShapesAndMouseModesLeaveOneAnotherAlone)
{
    const auto chart = vtkSmartPointer<ChartXY>::New();
    SelectionShapeProperty shape(chart);
    VTKChartsMouseModeProperty mode{vtkSmartPointer<vtkChart>(chart)};
    std::vector<SelectionShape> told;
    shape.valueChanged.connect([&](SelectionShape value) { told.push_back(value); });
    EXPECT_EQ(shape.value(), SelectionShape::Rectangle);
    const auto bindings = [&] {
        return std::vector<int>{
            chart->GetActionToButton(vtkChart::SELECT),
            chart->GetActionToButton(vtkChart::SELECT_POLYGON),
            chart->GetActionToButton(vtkChart::PAN),
            chart->GetActionToButton(vtkChart::ZOOM)};
    };

    const std::vector<SelectionShape> shapes = {
        SelectionShape::Lasso,
        SelectionShape::AlongX,
        SelectionShape::AlongY,
        SelectionShape::Rectangle};
    for (const SelectionShape value : shapes) {
        for (const int number : {0, 1, 2}) {
            mode.setValue(static_cast<DataViewInterface::MouseMode>(number));
            const std::vector<int> before = bindings();
            shape.setValue(value);
            EXPECT_EQ(bindings(), before);
            EXPECT_EQ(mode.value(), number);
        }
        mode.setValue(DataViewInterface::Select);
        EXPECT_EQ(shape.value(), value);
        EXPECT_EQ(chart->selectionShape(), value);
    }
    EXPECT_EQ(told, shapes);
}

} // namespace
