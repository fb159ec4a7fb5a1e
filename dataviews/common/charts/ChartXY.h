#pragma once

#include <dataviews/common/charts/ChartsExport.h>

#include <dataviews/platform/property/ValueRange_s.h>

#include <vtkChartXY.h>
#include <vtkSmartPointer.h>

#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

class vtkChartLegend;

/// A chart that carries several legends and lays them out itself, and that selects what is clicked on.
///
/// New legends are stacked from the top-right corner leftwards. A legend that grows or shrinks keeps its top-right
/// corner, none leaves the chart, and one that the user drags elsewhere stays there. While settings are being read
/// (Serializer::isInMiddleOfDeserialization()) no legend is touched.
///
/// Axes whose range VTK cannot draw get the closest one that it can (divisibleRange()) before they are painted;
/// the user cannot zoom in any further.
///
/// A click counts as a square of 10 × 10 pixels around it, except with the button that zooms. Keyboard modifiers are
/// kept from VTK's own arithmetic on selections: the plots hold exactly what was picked when the selection event
/// comes. The axes take no part in mouse actions. Used on the GUI thread.
class DATAVIEWS_CHARTS_EXPORT ChartXY : public vtkChartXY
{
public:
    vtkTypeMacro(ChartXY, vtkChartXY)

        static ChartXY* New();

    ChartXY(const ChartXY&) = delete;
    ChartXY& operator=(const ChartXY&) = delete;

    /// Adds \p legend behind the others; the chart paints it, places it if nobody else has by the first layout, and
    /// keeps it for good. A legend without a chart gets this one.
    void addLegend(const vtkSmartPointer<vtkChartLegend>& legend);

    /// How far the right and the top edge of a legend are from those of the chart, in pixels.
    struct LegendPlace
    {
        float right;
        float top;
    };

    /// Where \p legend, one of this chart's, was put by the user or by placeLegend(); none while it stands where the
    /// chart put it or has not been painted yet.
    [[nodiscard]] std::optional<LegendPlace> ownLegendPlace(const vtkChartLegend& legend) const;

    /// Puts \p legend, one of this chart's, at \p place when it is laid out next, but not outside of the chart.
    void placeLegend(const vtkChartLegend& legend, const LegendPlace& place);

    /// Whether legends keep their distance from the top-right corner when the chart changes its size, as in a window
    /// that the user drags larger. Off at first: legends then keep their distance from the bottom-left corner and are
    /// only kept inside.
    void setLegendsFollowSize(bool follow) { m_legendsFollowSize = follow; }

    /// How far points stay at least from the ends of axes that are fitted to the data, in pixels, but not more than a
    /// quarter of the axis; 0 at first, which puts the outermost ones upon the ends if these are round numbers.
    void setFitMargin(float pixels) { m_fitMargin = pixels; }

    void Update() override;
    bool Paint(vtkContext2D* painter) override;

    /// Without a button pressed and without a tool tip of the chart's own, a move changes nothing in the picture, and
    /// nothing is painted anew.
    bool MouseMoveEvent(const vtkContextMouseEvent& event) override;

    bool MouseWheelEvent(const vtkContextMouseEvent& event, int delta) override;
    bool MouseButtonReleaseEvent(const vtkContextMouseEvent& event) override;

    /// The second click of two quick ones is a click like any other.
    bool MouseDoubleClickEvent(const vtkContextMouseEvent& event) override;

protected:
    ChartXY();
    ~ChartXY() override;

    /// Lays the legends out; VTK calls it at least twice a frame. The rectangle is not used.
    void SetLegendPosition(const vtkRectf& rect) override;

private:
    struct LegendAndItsDimensions
    {
        vtkSmartPointer<vtkChartLegend> legend;
        std::pair<float, float> dimensions = {
            0.0F, 0.0F}; ///< at the last layout that saw the legend
        bool positioned = false; ///< some layout has seen the legend visible
        bool automaticallyPlaced = false; ///< it stands where the chart put it
        float rightEdge = 0.0F; ///< where the chart put its right edge
        std::optional<LegendPlace> wanted; ///< by placeLegend(), until the next layout
    };

    void registerLegend(const vtkSmartPointer<vtkChartLegend>& legend);
    void layOutLegend(LegendAndItsDimensions& record);
    [[nodiscard]] float findNextAvaialableLegendRightEdge();
    void anchorTopRightCornerWhenLegendIsResized(
        vtkChartLegend& legend, const std::pair<float, float>& oldDimensions, vtkRectf& rect);
    void ensureLegendIsWithinChartViewport(vtkChartLegend& legend, const vtkRectf& rect);
    void detectIfLegendWasMoved(LegendAndItsDimensions& record);
    void moveLegendsWithSize();
    void keepAxesDivisible();
    [[nodiscard]] bool canZoomUpTo(const vtkVector2f& corner);
    void finishFit();
    [[nodiscard]] ValueRange_s<double> dataRange(std::size_t coordinate);
    void settleTransforms(vtkContext2D* painter);
    [[nodiscard]] bool hasVisiblePlot();
    void clearSelectionsOfSkippedPlots();

    std::vector<LegendAndItsDimensions> m_legends;
    vtkContext2D* m_painter = nullptr; ///< of the last Paint()
    bool m_legendsFollowSize = false;
    float m_fitMargin = 0.0F;
    std::pair<float, float> m_paintedSize = {0.0F, 0.0F}; ///< of the chart, at the last Paint()
};
