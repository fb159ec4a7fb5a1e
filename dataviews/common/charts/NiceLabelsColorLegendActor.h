#pragma once

#include <dataviews/common/charts/ChartsExport.h>

#include <vtkScalarBarActor.h>

/// A color bar whose labels print a value that is zero but for rounding as 0.
///
/// Spreads its labels evenly over the range of the lookup table and fits one font size to all of them. A single label
/// gets no higher than a tenth of the bar, the title of a vertical bar no higher than a sixteenth. A table with indexed
/// lookup has no labels; custom labels are laid out as in any other bar. Used on the GUI thread.
class DATAVIEWS_CHARTS_EXPORT NiceLabelsColorLegendActor : public vtkScalarBarActor
{
public:
    vtkTypeMacro(NiceLabelsColorLegendActor, vtkScalarBarActor)

        static NiceLabelsColorLegendActor* New();

    NiceLabelsColorLegendActor(const NiceLabelsColorLegendActor&) = delete;
    NiceLabelsColorLegendActor& operator=(const NiceLabelsColorLegendActor&) = delete;

protected:
    NiceLabelsColorLegendActor();
    ~NiceLabelsColorLegendActor() override;

    /// Called by VTK during its layout. Keeps the title of a vertical bar to a sixteenth of the height.
    void LayoutTitle() override;

    /// Called by VTK during its layout, after the boxes of the bar and the title were computed.
    void LayoutTicks() override;

private:
    struct LabelSize
    {
        int width;
        int height;
    };

    void makeLabels();
    [[nodiscard]] LabelSize placeVerticalLabels();
    [[nodiscard]] LabelSize placeHorizontalLabels();
    void fitLabels(const LabelSize& room);
};
