#include <dataviews/common/charts/ChartXY.h>
#include <dataviews/common/charts/SelectionShapeProperty.h>

#include <utility>

SelectionShapeProperty::SelectionShapeProperty(vtkSmartPointer<ChartXY> chart)
    : m_chart(std::move(chart))
{}

SelectionShapeProperty::~SelectionShapeProperty() = default;

void SelectionShapeProperty::storeValue(const SelectionShape& shape)
{
    m_chart->setSelectionShape(shape);
}

SelectionShape SelectionShapeProperty::storedValue() const
{
    return m_chart->selectionShape();
}
