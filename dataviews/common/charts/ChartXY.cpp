#include <dataviews/common/charts/ChartXY.h>
#include <dataviews/common/charts/axisRange.h>

#include <dataviews/platform/data/makeNiceNumber.h>
#include <dataviews/platform/serialize/Serializer.h>

#include <vtkAxis.h>
#include <vtkChartLegend.h>
#include <vtkContext2D.h>
#include <vtkContextMouseEvent.h>
#include <vtkContextScene.h>
#include <vtkIdTypeArray.h>
#include <vtkNew.h>
#include <vtkObjectFactory.h>
#include <vtkPlot.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

/// The point of a legend that has not been placed yet.
constexpr float unplaced = -1984.0F;

/// A drag shorter than this in either direction is a click.
constexpr float clickSize = 0.5F;

/// How far around a click points are picked.
constexpr float clickReach = 5.0F;

/// As a share of the axis.
constexpr float largestFitMargin = 0.25F;

/// \p range, widened to round numbers where it has to be to leave \p share of it free on both sides of \p data.
ValueRange_s<double> withMargin(
    ValueRange_s<double> range, const ValueRange_s<double>& data, double share)
{
    // What is added at one end makes the margin at the other wider, too. A few steps are enough: each rounds up.
    constexpr int mostSteps = 20;
    for (int i = 0; i < mostSteps; ++i) {
        const double margin = (range.max - range.min) * share;
        const double step = makeNiceNumber(margin);
        const bool isLow = data.min - margin < range.min;
        const bool isHigh = data.max + margin > range.max;
        if (!(step > 0.0) || !std::isfinite(step) || (!isLow && !isHigh)) {
            break;
        }
        if (isLow) {
            range.min = std::floor((data.min - margin) / step) * step;
        }
        if (isHigh) {
            range.max = std::ceil((data.max + margin) / step) * step;
        }
    }
    return range;
}

bool isUnplaced(vtkChartLegend& legend)
{
    const float* point = legend.GetPoint();
    return point[0] == unplaced && point[1] == unplaced;
}

} // namespace

vtkStandardNewMacro(ChartXY)

    ChartXY::ChartXY()
{
    registerLegend(GetLegend());

    // Otherwise a click on an axis would be a click on empty space, and a drag along one would pan.
    for (int axis = 0; axis < GetNumberOfAxes(); ++axis) {
        GetAxis(axis)->SetInteractive(false);
    }
}

ChartXY::~ChartXY() = default;

void ChartXY::addLegend(const vtkSmartPointer<vtkChartLegend>& legend)
{
    registerLegend(legend);
    if (legend->GetChart() == nullptr) {
        legend->SetChart(this);
    }
    AddItem(legend);
}

std::optional<ChartXY::LegendPlace> ChartXY::ownLegendPlace(const vtkChartLegend& legend) const
{
    const auto record =
        std::find_if(m_legends.begin(), m_legends.end(), [&legend](const auto& candidate) {
            return candidate.legend == &legend;
        });
    if (record == m_legends.end() || record->wanted) {
        return record == m_legends.end() ? std::nullopt : record->wanted;
    }
    if (!record->positioned || record->automaticallyPlaced) {
        return {};
    }
    const float* point = record->legend->GetPoint();
    return LegendPlace{
        m_paintedSize.first - point[0] - record->dimensions.first,
        m_paintedSize.second - point[1] - record->dimensions.second};
}

void ChartXY::placeLegend(const vtkChartLegend& legend, const LegendPlace& place)
{
    for (LegendAndItsDimensions& record : m_legends) {
        if (record.legend == &legend) {
            record.wanted = place;
        }
    }
}

void ChartXY::Update()
{
    for (const LegendAndItsDimensions& record : m_legends) {
        record.legend->Update();
    }
    Superclass::Update();
}

bool ChartXY::Paint(vtkContext2D* painter)
{
    m_painter = painter;
    if (GetScene() != nullptr) {
        moveLegendsWithSize();
    }
    if (GetVisible() && GetScene() != nullptr && (hasVisiblePlot() || GetRenderEmpty())) {
        keepAxesDivisible();
        settleTransforms(painter);
    }
    return Superclass::Paint(painter);
}

bool ChartXY::MouseMoveEvent(const vtkContextMouseEvent& event)
{
    // VTK marks the scene for painting at every such move, for the tool tip that may come or go.
    if (event.GetButton() == vtkContextMouseEvent::NO_BUTTON && GetTooltip() == nullptr) {
        return true;
    }
    return Superclass::MouseMoveEvent(event);
}

bool ChartXY::MouseWheelEvent(const vtkContextMouseEvent& event, int delta)
{
    const bool isHandled = Superclass::MouseWheelEvent(event, delta);
    // Many turns may come before the next picture, and each makes new ticks.
    keepAxesDivisible();
    return isHandled;
}

bool ChartXY::MouseButtonReleaseEvent(const vtkContextMouseEvent& event)
{
    vtkContextMouseEvent release = event;
    // Without an interactor there are no modifiers: VTK would otherwise add to and take from the plots' selections.
    release.SetInteractor(nullptr);

    const bool isClick =
        std::abs(MouseBox.GetWidth()) < clickSize || std::abs(MouseBox.GetHeight()) < clickSize;
    if (isClick && event.GetButton() != Actions.Zoom()) {
        const float x = MouseBox.GetX();
        const float y = MouseBox.GetY();
        MouseBox.Set(x - clickReach, y + clickReach, 2 * clickReach, -2 * clickReach);
        release.SetPos(vtkVector2f(x + clickReach, y - clickReach));
    }
    if (event.GetButton() == Actions.Select()) {
        clearSelectionsOfSkippedPlots();
    }
    if (event.GetButton() == Actions.Zoom() && !canZoomUpTo(event.GetPos())) {
        // VTK takes this for a still click.
        release.SetPos(vtkVector2f(MouseBox.GetX(), MouseBox.GetY()));
        GetScene()->SetDirty(true);
    }
    return Superclass::MouseButtonReleaseEvent(release);
}

bool ChartXY::MouseDoubleClickEvent(const vtkContextMouseEvent& event)
{
    if (event.GetButton() != Actions.Select()) {
        return Superclass::MouseDoubleClickEvent(event);
    }
    // The scene swallows the release that follows.
    MouseButtonPressEvent(event);
    MouseButtonReleaseEvent(event);
    return true;
}

void ChartXY::SetLegendPosition(const vtkRectf& /*rect*/)
{
    if (Serializer::isInMiddleOfDeserialization()) {
        return;
    }
    for (LegendAndItsDimensions& record : m_legends) {
        if (record.legend->GetVisible()) {
            layOutLegend(record);
        }
    }
}

void ChartXY::registerLegend(const vtkSmartPointer<vtkChartLegend>& legend)
{
    legend->SetHorizontalAlignment(vtkChartLegend::CUSTOM);
    legend->SetVerticalAlignment(vtkChartLegend::CUSTOM);
    legend->SetPoint(unplaced, unplaced);
    LegendAndItsDimensions record;
    record.legend = legend;
    m_legends.push_back(record);
}

void ChartXY::layOutLegend(LegendAndItsDimensions& record)
{
    vtkChartLegend& legend = *record.legend;
    const vtkRectf measured = legend.GetBoundingRect(m_painter);
    if (record.wanted) {
        legend.SetPoint(
            GetSize().GetWidth() - record.wanted->right - measured.GetWidth(),
            GetSize().GetHeight() - record.wanted->top - measured.GetHeight());
        record.wanted.reset();
        record.positioned = true;
        record.automaticallyPlaced = false;
        record.dimensions = {measured.GetWidth(), measured.GetHeight()};
    }
    if (!record.positioned) {
        record.positioned = true;
        if (isUnplaced(legend)) {
            const auto border = static_cast<float>(GetHiddenAxisBorder());
            record.rightEdge = findNextAvaialableLegendRightEdge();
            // One border too high at first; the next pass brings the top edge down into the chart.
            legend.SetPoint(
                record.rightEdge - measured.GetWidth(),
                GetSize().GetHeight() - measured.GetHeight() + border);
            record.automaticallyPlaced = true;
        }
    } else {
        vtkRectf rect = measured;
        anchorTopRightCornerWhenLegendIsResized(legend, record.dimensions, rect);
        ensureLegendIsWithinChartViewport(legend, rect);
        detectIfLegendWasMoved(record);
    }
    record.dimensions = {measured.GetWidth(), measured.GetHeight()};
}

float ChartXY::findNextAvaialableLegendRightEdge()
{
    float edge = GetSize().GetWidth();
    for (const LegendAndItsDimensions& record : m_legends) {
        if (record.automaticallyPlaced) {
            edge = std::min(
                edge, record.rightEdge - record.legend->GetBoundingRect(m_painter).GetWidth());
        }
    }
    return edge - static_cast<float>(GetHiddenAxisBorder());
}

void ChartXY::anchorTopRightCornerWhenLegendIsResized(
    vtkChartLegend& legend, const std::pair<float, float>& oldDimensions, vtkRectf& rect)
{
    if (rect.GetWidth() == oldDimensions.first && rect.GetHeight() == oldDimensions.second) {
        return;
    }
    const float* point = legend.GetPoint();
    const float x = point[0] + oldDimensions.first - rect.GetWidth();
    const float y = point[1] + oldDimensions.second - rect.GetHeight();
    legend.SetPoint(x, y);
    rect.SetX(x);
    rect.SetY(y);
}

void ChartXY::ensureLegendIsWithinChartViewport(vtkChartLegend& legend, const vtkRectf& rect)
{
    const vtkRectf size = GetSize();
    const auto border = static_cast<float>(GetHiddenAxisBorder());
    float x = rect.GetX();
    float y = rect.GetY();
    if (rect.GetX() < border) {
        x = border;
    }
    if (rect.GetX() + rect.GetWidth() > size.GetWidth() - border) {
        x = size.GetWidth() - rect.GetWidth() - border;
    }
    // Of a legend higher than the chart the top is kept in view; it may hang out at the bottom.
    if (rect.GetY() + rect.GetHeight() < border) {
        y = border - rect.GetHeight();
    }
    if (rect.GetY() + rect.GetHeight() > size.GetHeight() - border) {
        y = size.GetHeight() - border - rect.GetHeight();
    }
    legend.SetPoint(x, y);
}

void ChartXY::detectIfLegendWasMoved(LegendAndItsDimensions& record)
{
    const float width = record.legend->GetBoundingRect(m_painter).GetWidth();
    if (record.automaticallyPlaced && record.legend->GetPoint()[0] + width != record.rightEdge) {
        record.automaticallyPlaced = false;
    }
}

void ChartXY::moveLegendsWithSize()
{
    const vtkRectf own = GetSize();
    const std::pair<float, float> size = GetAutoSize()
        ? std::pair<float, float>(GetScene()->GetSceneWidth(), GetScene()->GetSceneHeight())
        : std::pair<float, float>(own.GetWidth(), own.GetHeight());
    const float growthX = size.first - m_paintedSize.first;
    const float growthY = size.second - m_paintedSize.second;
    m_paintedSize = size;
    if (!m_legendsFollowSize || Serializer::isInMiddleOfDeserialization()) {
        return;
    }
    for (LegendAndItsDimensions& record : m_legends) {
        if (record.positioned) {
            const float* point = record.legend->GetPoint();
            record.legend->SetPoint(point[0] + growthX, point[1] + growthY);
            record.rightEdge += growthX;
        }
    }
}

void ChartXY::keepAxesDivisible()
{
    for (int index = 0; index < GetNumberOfAxes(); ++index) {
        vtkAxis* axis = GetAxis(index);
        const ValueRange_s<double> range = {axis->GetMinimum(), axis->GetMaximum()};
        if (!canBeDivided(range)) {
            const ValueRange_s<double> divisible = divisibleRange(range);
            axis->SetRange(divisible.min, divisible.max);
        }
    }
}

void ChartXY::finishFit()
{
    for (const int index : {vtkAxis::BOTTOM, vtkAxis::LEFT}) {
        vtkAxis* axis = GetAxis(index);
        if (axis->GetBehavior() != vtkAxis::AUTO) {
            continue;
        }
        // VTK turns the axis of a single negative value upside down.
        if (axis->GetMinimum() > axis->GetMaximum()) {
            axis->SetRange(axis->GetMaximum(), axis->GetMinimum());
        }
        const std::size_t coordinate = index == vtkAxis::BOTTOM ? 0 : 1;
        const float length = axis->GetPoint2()[coordinate] - axis->GetPoint1()[coordinate];
        const ValueRange_s<double> data = dataRange(coordinate);
        if (m_fitMargin <= 0.0F || length <= 0.0F || axis->GetLogScale() || data.min > data.max) {
            continue;
        }
        const double share = std::min(m_fitMargin / length, largestFitMargin);
        const ValueRange_s<double> range =
            withMargin({axis->GetMinimum(), axis->GetMaximum()}, data, share);
        axis->SetRange(range.min, range.max);
    }
}

ValueRange_s<double> ChartXY::dataRange(std::size_t coordinate)
{
    ValueRange_s<double> range = {
        std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity()};
    for (vtkIdType index = 0; index < GetNumberOfPlots(); ++index) {
        vtkPlot* plot = GetPlot(index);
        double bounds[4] = {0.0, -1.0, 0.0, -1.0};
        if (plot->GetVisible()) {
            plot->GetBounds(bounds);
        }
        if (bounds[2 * coordinate] <= bounds[2 * coordinate + 1]) {
            range.min = std::min(range.min, bounds[2 * coordinate]);
            range.max = std::max(range.max, bounds[2 * coordinate + 1]);
        }
    }
    return range;
}

bool ChartXY::canZoomUpTo(const vtkVector2f& corner)
{
    for (int index = 0; index < GetNumberOfAxes(); ++index) {
        vtkAxis& axis = *GetAxis(index);
        const int along = index == vtkAxis::BOTTOM || index == vtkAxis::TOP ? 0 : 1;
        const float start = axis.GetPoint1()[along];
        const double length = axis.GetPoint2()[along] - start;
        const double range = axis.GetMaximum() - axis.GetMinimum();
        const auto valueAt = [&](double place) {
            return axis.GetMinimum() + range * (place - start) / length;
        };
        if (!canBeDivided({valueAt(MouseBox[along]), valueAt(corner[along])})) {
            return false;
        }
    }
    return true;
}

void ChartXY::settleTransforms(vtkContext2D* painter)
{
    // For data far from zero the chart shifts the coordinates of its plots. Within one frame VTK has the plots make
    // their points before it knows a new shift, so that the first frame after a fit, a zoom or a pan would show them
    // somewhere else or not at all.
    if (PlotTransformValid) {
        RecalculatePlotTransforms();
        return;
    }
    if (GetAutoSize()) {
        SetSize(vtkRectf(
            0.0F,
            0.0F,
            static_cast<float>(GetScene()->GetSceneWidth()),
            static_cast<float>(GetScene()->GetSceneHeight())));
    }
    Update();
    UpdateLayout(painter);
    RecalculatePlotBounds();
    finishFit();
    keepAxesDivisible();
    UpdateLayout(painter);
    RecalculatePlotTransforms();
}

bool ChartXY::hasVisiblePlot()
{
    for (vtkIdType index = 0; index < GetNumberOfPlots(); ++index) {
        if (GetPlot(index)->GetVisible()) {
            return true;
        }
    }
    return false;
}

void ChartXY::clearSelectionsOfSkippedPlots()
{
    for (vtkIdType index = 0; index < GetNumberOfPlots(); ++index) {
        vtkPlot* plot = GetPlot(index);
        if (plot->GetVisible() && plot->GetSelectable()) {
            continue;
        }
        // VTK would leave them what was picked long ago, as if it had been picked now.
        vtkNew<vtkIdTypeArray> nothing;
        const bool selectable = plot->GetSelectable();
        plot->SetSelectable(true);
        plot->SetSelection(nothing);
        plot->SetSelectable(selectable);
    }
}
