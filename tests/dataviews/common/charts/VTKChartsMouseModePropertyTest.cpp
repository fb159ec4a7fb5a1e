#include <dataviews/common/charts/VTKChartsMouseModeProperty.h>

#include <vtkChartXY.h>
#include <vtkContextMouseEvent.h>
#include <vtkObjectFactory.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace {

using testing::ElementsAre;
using Mode = DataViewInterface::MouseMode;
using Bindings = std::vector<std::pair<int, int>>;

constexpr int left = vtkContextMouseEvent::LEFT_BUTTON;
constexpr int middle = vtkContextMouseEvent::MIDDLE_BUTTON;

/// Notes the bindings in the order in which they are asked for.
class BindingChart : public vtkChartXY
{
public:
    vtkTypeMacro(BindingChart, vtkChartXY) static BindingChart* New()
    {
        VTK_STANDARD_NEW_BODY(BindingChart);
    }

    void SetActionToButton(int action, int button) override
    {
        m_calls.emplace_back(action, button);
        Superclass::SetActionToButton(action, button);
    }

    Bindings m_calls;
};

Bindings bindingsOf(int mode)
{
    switch (mode) {
    case DataViewInterface::Select:
        return {{vtkChart::SELECT, left}, {vtkChart::PAN, middle}, {vtkChart::ZOOM, -1}};
    case DataViewInterface::Pan:
        return {{vtkChart::SELECT, -1}, {vtkChart::PAN, left}, {vtkChart::ZOOM, middle}};
    default:
        return {{vtkChart::SELECT, -1}, {vtkChart::PAN, middle}, {vtkChart::ZOOM, left}};
    }
}

void expectBound(vtkChart& chart, const Bindings& bindings)
{
    for (const auto& [action, button] : bindings) {
        EXPECT_EQ(chart.GetActionToButton(action), button) << "action " << action;
    }
}

TEST(VTKChartsMouseModePropertyTest, StartsAtPan)
{
    const auto chart = vtkSmartPointer<BindingChart>::New();

    const VTKChartsMouseModeProperty property(chart);

    EXPECT_EQ(property.value(), DataViewInterface::Pan);
    EXPECT_EQ(chart->m_calls, bindingsOf(DataViewInterface::Pan));
    expectBound(*chart, chart->m_calls);
}

TEST(VTKChartsMouseModePropertyTest, EveryModeFollowsEveryOtherInTheOrderThatVtkNeeds)
{
    const auto chart = vtkSmartPointer<BindingChart>::New();
    VTKChartsMouseModeProperty property(chart);
    std::vector<int> told;
    property.valueChanged.connect([&](Mode mode) { told.push_back(mode); });

    for (const int mode : {0, 1, 2, 1, 0, 2, 0}) {
        chart->m_calls.clear();
        property.setValue(static_cast<Mode>(mode));
        EXPECT_EQ(chart->m_calls, bindingsOf(mode)) << "mode " << mode;
        expectBound(*chart, bindingsOf(mode));
    }

    EXPECT_THAT(told, ElementsAre(0, 1, 2, 1, 0, 2, 0));
}

TEST(VTKChartsMouseModePropertyTest, UnknownModesAreStoredAndBindNothing)
{
    const auto chart = vtkSmartPointer<BindingChart>::New();
    VTKChartsMouseModeProperty property(chart);
    property.setValue(DataViewInterface::Select);
    chart->m_calls.clear();

    property.setValue(static_cast<Mode>(3));

    EXPECT_EQ(property.value(), 3);
    EXPECT_THAT(chart->m_calls, ElementsAre());
}

} // namespace
