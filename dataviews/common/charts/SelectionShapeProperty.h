#pragma once

#include <dataviews/common/charts/ChartsExport.h>
#include <dataviews/common/charts/SelectionShape.h>
#include <dataviews/common/views/PropertyAbstract.h>

#include <vtkSmartPointer.h>

class ChartXY;

/// The shape that drags select with in a chart, whatever its mouse mode is. Takes effect with the next drag.
class DATAVIEWS_CHARTS_EXPORT SelectionShapeProperty
    : public corvane::PropertyAbstract<SelectionShape>
{
public:
    explicit SelectionShapeProperty(vtkSmartPointer<ChartXY> chart);
    SelectionShapeProperty(const SelectionShapeProperty&) = delete;
    SelectionShapeProperty& operator=(const SelectionShapeProperty&) = delete;
    ~SelectionShapeProperty() override;

protected:
    void storeValue(const SelectionShape& shape) override;
    [[nodiscard]] SelectionShape storedValue() const override;

private:
    vtkSmartPointer<ChartXY> m_chart;
};
