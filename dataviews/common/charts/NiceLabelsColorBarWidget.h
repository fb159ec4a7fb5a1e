#pragma once

#include <dataviews/common/charts/ChartsExport.h>

#include <vtkScalarBarWidget.h>

/// A color bar that the user can move and resize, with the labels of a NiceLabelsColorLegendActor.
class DATAVIEWS_CHARTS_EXPORT NiceLabelsColorBarWidget : public vtkScalarBarWidget
{
public:
    vtkTypeMacro(NiceLabelsColorBarWidget, vtkScalarBarWidget)

        static NiceLabelsColorBarWidget* New();

    NiceLabelsColorBarWidget(const NiceLabelsColorBarWidget&) = delete;
    NiceLabelsColorBarWidget& operator=(const NiceLabelsColorBarWidget&) = delete;

protected:
    NiceLabelsColorBarWidget();
    ~NiceLabelsColorBarWidget() override;
};
