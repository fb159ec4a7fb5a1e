#include <dataviews/common/charts/ChartXY.h>

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

namespace {

/// The point of a legend that has not been placed yet.
constexpr float unplaced = -1984.0F;

/// A drag shorter than this in either direction is a click.
constexpr float clickSize = 0.5F;

/// How far around a click points are picked.
constexpr float clickReach = 5.0F;

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
        settleTransforms(painter);
    }
    return Superclass::Paint(painter);
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
