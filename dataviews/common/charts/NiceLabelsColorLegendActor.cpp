#include <dataviews/common/charts/NiceLabelsColorLegendActor.h>
#include <dataviews/common/charts/colorLabelValues.h>

#include <vtkCoordinate.h>
#include <vtkObjectFactory.h>
#include <vtkScalarBarActorInternal.h>
#include <vtkScalarsToColors.h>
#include <vtkSmartPointer.h>
#include <vtkTextActor.h>
#include <vtkTextProperty.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <vector>

namespace {

// Texts whose size nothing else limits get at most one part in so many of the length they share with the colors.
constexpr int labelShare = 10;
constexpr int titleShare = 16;

} // namespace

vtkStandardNewMacro(NiceLabelsColorLegendActor)

    NiceLabelsColorLegendActor::NiceLabelsColorLegendActor()
{
    SetVerticalTitleSeparation(3);
}

NiceLabelsColorLegendActor::~NiceLabelsColorLegendActor() = default;

void NiceLabelsColorLegendActor::LayoutTitle()
{
    Superclass::LayoutTitle();
    vtkScalarBarBox& title = P->TitleBox;
    if (Orientation != VTK_ORIENT_VERTICAL || UnconstrainedFontSize || title.Size[1] == 0) {
        return;
    }
    // VTK lets the title fill half the frame: a variable called "x" would leave no room for its colors.
    const int room = P->Frame.Size[1] / titleShare;
    if (title.Size[1] > room) {
        TitleActor->SetConstrainedFontSize(P->Viewport, P->Frame.Size[0] - 2 * TextPad, room);
        double size[2] = {0.0, 0.0};
        TitleActor->GetSize(P->Viewport, size);
        const int top = title.Posn[1] + title.Size[1];
        title.Size[0] = static_cast<int>(std::ceil(size[0]));
        title.Size[1] = static_cast<int>(std::ceil(size[1]));
        title.Posn[0] = P->Frame.Posn[0] + (P->Frame.Size[0] - title.Size[0]) / 2;
        title.Posn[1] = top - title.Size[1];
    }
    // The topmost label stands right below, where letters like "y" reach.
    constexpr int margin = 2;
    title.Size[1] += margin;
    title.Posn[1] -= margin;
}

void NiceLabelsColorLegendActor::LayoutTicks()
{
    // VTK draws the colors that are in the table, also if nobody has filled it yet.
    LookupTable->Build();
    if (UseCustomLabels) {
        Superclass::LayoutTicks();
        return;
    }
    if (LookupTable->GetIndexedLookup() != 0) {
        // The table's annotations stand in the place of labels.
        NumberOfLabelsBuilt = 0;
        return;
    }
    makeLabels();
    if (NumberOfLabels > 0) {
        fitLabels(
            Orientation == VTK_ORIENT_VERTICAL ? placeVerticalLabels() : placeHorizontalLabels());
    }
    NumberOfLabelsBuilt = NumberOfLabels;
}

void NiceLabelsColorLegendActor::makeLabels()
{
    const double* const range = LookupTable->GetRange();
    const std::vector<double> values =
        colorLabelValues({range[0], range[1]}, NumberOfLabels, LookupTable->UsingLogScale() != 0);
    P->TextActors.resize(values.size());
    P->TextActorAnchors.resize(values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        auto label = vtkSmartPointer<vtkTextActor>::New();
        char text[512];
        std::snprintf(text, sizeof text, LabelFormat, values[i]);
        label->SetInput(text);
        // A copy, for fitting changes the size of the font.
        label->GetTextProperty()->ShallowCopy(LabelTextProperty);
        label->SetProperty(GetProperty());
        label->GetPositionCoordinate()->SetReferenceCoordinate(PositionCoordinate);
        P->TextActors[i] = label;
        P->TextActorAnchors[i] = values.size() > 1
            ? static_cast<double>(i) / static_cast<double>(values.size() - 1)
            : 0.5;
    }
}

NiceLabelsColorLegendActor::LabelSize NiceLabelsColorLegendActor::placeVerticalLabels()
{
    constexpr int manyLabels = 18;
    const int pad = TextPad + (NumberOfLabels < manyLabels ? 2 : 0);
    vtkScalarBarBox& ticks = P->TickBox;
    ticks.Posn = P->ScalarBarBox.Posn;
    ticks.Size[0] = P->Frame.Size[0] - P->ScalarBarBox.Size[0] - 3 * pad;
    ticks.Size[1] = P->Frame.Size[1] - P->TitleBox.Size[1] - VerticalTitleSeparation - 3 * pad;
    const auto makeRoomFor = [this, &ticks](const vtkScalarBarBox& swatch) {
        ticks.Size[1] = static_cast<int>(ticks.Size[1] - (swatch.Size[1] + P->SwatchPad));
    };
    if (DrawNanAnnotation != 0) {
        makeRoomFor(P->NanBox);
    }
    if (DrawBelowRangeSwatch) {
        makeRoomFor(P->BelowRangeSwatchBox);
    }
    if (DrawAboveRangeSwatch) {
        makeRoomFor(P->AboveRangeSwatchBox);
    }
    if (TextPosition == PrecedeScalarBar) {
        ticks.Posn[0] = pad;
    } else {
        ticks.Posn[0] += P->ScalarBarBox.Size[0] + 2 * pad;
    }
    return {ticks.Size[0], (ticks.Size[1] - (NumberOfLabels - 1) * pad) / NumberOfLabels};
}

NiceLabelsColorLegendActor::LabelSize NiceLabelsColorLegendActor::placeHorizontalLabels()
{
    // The sizes of a box are its thickness and its length: here its height and its width.
    vtkScalarBarBox& ticks = P->TickBox;
    ticks.Posn = P->ScalarBarBox.Posn;
    ticks.Size[1] = P->ScalarBarBox.Size[1];
    ticks.Size[0] = P->Frame.Size[0] - 4 * TextPad - P->TitleBox.Size[0] - P->ScalarBarBox.Size[0];
    if (TextPosition == PrecedeScalarBar) {
        ticks.Posn[1] = P->TitleBox.Size[0] + 2 * TextPad;
    } else {
        ticks.Posn[1] += P->ScalarBarBox.Size[0];
    }
    return {(ticks.Size[1] - (NumberOfLabels - 1) * TextPad) / NumberOfLabels, ticks.Size[0]};
}

void NiceLabelsColorLegendActor::fitLabels(const LabelSize& room)
{
    // Fitting has no upper bound: a single label would fill the frame and leave nothing of the bar.
    const int height = NumberOfLabels == 1
        ? std::min(room.height, P->ScalarBarBox.Size[1] / labelShare)
        : room.height;
    int labelSize[2] = {0, 0};
    if (!UnconstrainedFontSize) {
        vtkTextActor::SetMultipleConstrainedFontSize(
            P->Viewport,
            room.width,
            height,
            P->TextActors.PointerArray(),
            NumberOfLabels,
            labelSize);
    }

    // The first and the last label stand beside the ends of the colors and reach beyond them by half their size.
    const int along = P->TL[1];
    for (vtkScalarBarBox* const box : {&P->ScalarBarBox, &P->TickBox}) {
        box->Posn[along] += labelSize[along] / 2;
        box->Size[1] -= labelSize[along];
    }
    if (Orientation == VTK_ORIENT_HORIZONTAL) {
        const int belowRange = static_cast<int>(P->BelowRangeSwatchSize);
        P->ScalarBarBox.Posn[0] += belowRange;
        P->TickBox.Posn[0] += belowRange;
        P->TickBox.Posn[1] += TextPosition == PrecedeScalarBar ? -TextPad : TextPad;
        P->TickBox.Size[1] -= TextPad;
    }
}
