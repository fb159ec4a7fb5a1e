#pragma once

#include <dataviews/common/charts/NiceLabelsColorLegendActor.h>

#include <vtkObjectFactory.h>
#include <vtkScalarBarActorInternal.h>
#include <vtkTextActor.h>
#include <vtkViewport.h>

#include <string>
#include <vector>

/// A color bar that shows what it laid out.
class OpenColorBar : public NiceLabelsColorLegendActor
{
public:
    /// Pixels from the lower left corner of the frame.
    struct Rect
    {
        double left;
        double right;
        double bottom;
        double top;
    };

    vtkTypeMacro(OpenColorBar, NiceLabelsColorLegendActor) static OpenColorBar* New()
    {
        VTK_STANDARD_NEW_BODY(OpenColorBar);
    }

    /// What rendering does before it draws.
    void layOut(vtkViewport& viewport) { RebuildLayout(&viewport); }

    /// What stands on the bar in the last picture, or layout, from its lower end to its upper.
    [[nodiscard]] std::vector<std::string> texts() const
    {
        std::vector<std::string> texts;
        for (int i = 0; i < NumberOfLabelsBuilt; ++i) {
            texts.emplace_back(P->TextActors[static_cast<std::size_t>(i)]->GetInput());
        }
        return texts;
    }

    [[nodiscard]] std::vector<Rect> labels(vtkViewport& viewport) const
    {
        std::vector<Rect> rects;
        for (const auto& label : P->TextActors) {
            double box[4];
            label->GetBoundingBox(&viewport, box);
            const double* const at = label->GetPosition();
            rects.push_back({at[0] + box[0], at[0] + box[1], at[1] + box[2], at[1] + box[3]});
        }
        return rects;
    }

    [[nodiscard]] Rect frame() const { return rect(P->Frame); }

    [[nodiscard]] Rect colors() const { return rect(P->ScalarBarBox); }

    [[nodiscard]] Rect ticks() const { return rect(P->TickBox); }

    [[nodiscard]] Rect title() const { return rect(P->TitleBox); }

private:
    [[nodiscard]] Rect rect(const vtkScalarBarBox& box) const
    {
        const int width = box.Size[P->TL[0]];
        const int height = box.Size[P->TL[1]];
        return {
            static_cast<double>(box.Posn[0]),
            static_cast<double>(box.Posn[0] + width),
            static_cast<double>(box.Posn[1]),
            static_cast<double>(box.Posn[1] + height)};
    }
};
