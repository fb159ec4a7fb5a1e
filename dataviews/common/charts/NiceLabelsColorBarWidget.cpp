#include <dataviews/common/charts/NiceLabelsColorBarWidget.h>
#include <dataviews/common/charts/NiceLabelsColorLegendActor.h>

#include <vtkNew.h>
#include <vtkObjectFactory.h>

vtkStandardNewMacro(NiceLabelsColorBarWidget)

    NiceLabelsColorBarWidget::NiceLabelsColorBarWidget()
{
    const vtkNew<NiceLabelsColorLegendActor> bar;
    SetScalarBarActor(bar);
}

NiceLabelsColorBarWidget::~NiceLabelsColorBarWidget() = default;
