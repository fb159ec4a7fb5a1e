#pragma once

#include <dataviews/common/charts/ChartsExport.h>
#include <dataviews/common/charts/SelectionArea.h>
#include <dataviews/common/charts/SelectionShape.h>

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
/// The button that selects drags a rectangle, a lasso, or along one axis (SelectionShape). A drag along an axis takes the
/// points between its ends that lie in view along the other axis; one that begins beside the left axis or below the
/// bottom axis is along that axis whatever the shape is. A lasso is VTK's polygon action, bound to the same button, that
/// follows the mouse more closely.
///
/// A click counts as a square of 10 × 10 pixels around it, except with the button that zooms; so does a lasso or a drag
/// along an axis that stays within that square. Keyboard modifiers are
/// kept from VTK's own arithmetic on selections: the plots hold exactly what was picked when the selection event
/// comes. The axes themselves take no part in mouse actions: a click beside the plot area does nothing. Used on the GUI
/// thread.
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

    /// Rectangle at first. Takes effect with the next press.
    void setSelectionShape(SelectionShape shape) { m_selectionShape = shape; }

    [[nodiscard]] SelectionShape selectionShape() const { return m_selectionShape; }

    /// Whether the chart paints the band of a drag that selects or zooms, anew at each move; on at first. Off for who
    /// shows it over the picture, which then need not be painted again.
    void setPaintsBand(bool paints) { m_paintsBand = paints; }

    /// In pixels of the scene, what letting the button go now would pick, as far as the mouse has been reported; nothing
    /// unless it has been dragged with the button that selects.
    [[nodiscard]] std::optional<SelectionArea> draggedSelection() const;

    /// In pixels of the scene, what letting the button go now would zoom to.
    [[nodiscard]] std::optional<vtkRectf> draggedZoom() const;

    /// Forgets the drag that is in progress: what the mouse does until the next press is without effect. What it has
    /// done to the axes stays.
    void cancelDrag();

    void Update() override;
    bool Paint(vtkContext2D* painter) override;

    /// Without a button pressed and without a tool tip of the chart's own, a move changes nothing in the picture, and
    /// nothing is painted anew.
    bool MouseMoveEvent(const vtkContextMouseEvent& event) override;

    /// Also beside the left axis and below the bottom one, where a drag may begin that selects along the axis.
    bool Hit(const vtkContextMouseEvent& event) override;

    bool MouseButtonPressEvent(const vtkContextMouseEvent& event) override;
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

    /// The axis that \p place is beside, as a shape along it.
    [[nodiscard]] std::optional<SelectionShape> axisBeside(const vtkVector2f& place) const;
    void beginSelection(const vtkVector2f& place, const std::optional<SelectionShape>& beside);
    void dragSelection(const vtkVector2f& place);
    void dragAlong(std::size_t coordinate);
    bool endSelection(vtkContextMouseEvent& release);
    void endBand();
    [[nodiscard]] bool isSelectionClick() const;
    void pickInPolygon(const SelectionArea& area);

    std::vector<LegendAndItsDimensions> m_legends;
    vtkContext2D* m_painter = nullptr; ///< of the last Paint()
    bool m_legendsFollowSize = false;
    float m_fitMargin = 0.0F;
    SelectionShape m_selectionShape = SelectionShape::Rectangle;
    bool m_paintsBand = true;
    std::optional<SelectionShape> m_selecting; ///< while the button that selects is held
    bool m_isBesideAxis = false; ///< that drag began there
    bool m_isZooming = false; ///< while the button that zooms is held
    bool m_isCancelled = false; ///< until the next press
    vtkVector2f m_pressPlace{0.0F, 0.0F}; ///< of the drag that selects, as the next ones
    std::optional<vtkVector2f> m_dragPlace; ///< its last move
    float m_dragReach = 0.0F; ///< how far from its begin it has come: along its axis, or either way
    std::vector<vtkVector2f> m_lasso; ///< its corners but the last one, which is the last move
    std::pair<float, float> m_paintedSize = {0.0F, 0.0F}; ///< of the chart, at the last Paint()
};
