#pragma once

#include <dataviews/common/charts/ChartsExport.h>
#include <dataviews/common/views/DataViewInterface.h>
#include <dataviews/common/views/PropertyAbstract.h>

#include <vtkSmartPointer.h>

class vtkChart;

/// The mouse mode of a chart: binds the chart's mouse actions to the buttons.
///
/// Starts at Pan. A mode other than Select, Pan and Zoom is stored and leaves the bindings as they are.
class DATAVIEWS_CHARTS_EXPORT VTKChartsMouseModeProperty
    : public corvane::PropertyAbstract<DataViewInterface::MouseMode>
{
public:
    explicit VTKChartsMouseModeProperty(vtkSmartPointer<vtkChart> chart);
    VTKChartsMouseModeProperty(const VTKChartsMouseModeProperty&) = delete;
    VTKChartsMouseModeProperty& operator=(const VTKChartsMouseModeProperty&) = delete;
    ~VTKChartsMouseModeProperty() override;

protected:
    void storeValue(const DataViewInterface::MouseMode& mode) override;
    [[nodiscard]] DataViewInterface::MouseMode storedValue() const override;

private:
    DataViewInterface::MouseMode m_mode = DataViewInterface::Select;
    vtkSmartPointer<vtkChart> m_chart;
};
