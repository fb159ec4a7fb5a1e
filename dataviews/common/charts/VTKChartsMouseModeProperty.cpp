#include <dataviews/common/charts/VTKChartsMouseModeProperty.h>

#include <vtkChart.h>
#include <vtkContextMouseEvent.h>

#include <utility>

VTKChartsMouseModeProperty::VTKChartsMouseModeProperty(vtkSmartPointer<vtkChart> chart)
    : m_chart(std::move(chart))
{
    setValue(DataViewInterface::Pan);
}

VTKChartsMouseModeProperty::~VTKChartsMouseModeProperty() = default;

void VTKChartsMouseModeProperty::storeValue(const DataViewInterface::MouseMode& mode)
{
    constexpr int left = vtkContextMouseEvent::LEFT_BUTTON;
    constexpr int middle = vtkContextMouseEvent::MIDDLE_BUTTON;
    constexpr int none = -1;

    // The order counts: VTK takes a button away from the action that had it.
    switch (mode) {
    case DataViewInterface::Select:
        m_chart->SetActionToButton(vtkChart::SELECT, left);
        m_chart->SetActionToButton(vtkChart::PAN, middle);
        m_chart->SetActionToButton(vtkChart::ZOOM, none);
        break;
    case DataViewInterface::Pan:
        m_chart->SetActionToButton(vtkChart::SELECT, none);
        m_chart->SetActionToButton(vtkChart::PAN, left);
        m_chart->SetActionToButton(vtkChart::ZOOM, middle);
        break;
    case DataViewInterface::Zoom:
        m_chart->SetActionToButton(vtkChart::SELECT, none);
        m_chart->SetActionToButton(vtkChart::PAN, middle);
        m_chart->SetActionToButton(vtkChart::ZOOM, left);
        break;
    default:
        break;
    }
    m_mode = mode;
}

DataViewInterface::MouseMode VTKChartsMouseModeProperty::storedValue() const
{
    return m_mode;
}
