#include <dataviews/common/charts/ChartXY.h>
#include <dataviews/common/charts/axisRange.h>

#include <dataviews/platform/data/makeNiceNumber.h>
#include <dataviews/platform/serialize/Serializer.h>

#include <vtkAxis.h>
#include <vtkChartLegend.h>
#include <vtkCommand.h>
#include <vtkContext2D.h>
#include <vtkContextMouseEvent.h>
#include <vtkContextPolygon.h>
#include <vtkContextScene.h>
#include <vtkIdTypeArray.h>
#include <vtkNew.h>
#include <vtkObjectFactory.h>
#include <vtkPlot.h>
#include <vtkVectorOperators.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace {

/// The point of a legend that has not been placed yet.
constexpr float unplaced = -1984.0F;

/// A drag shorter than this in either direction is a click.
constexpr float clickSize = 0.5F;

/// How far around a click points are picked.
constexpr float clickReach = 5.0F;

/// Corners of a lasso are at least this far apart.
constexpr float lassoStep = 2.0F;

/// Points are in view along an axis if their middle is at most this far outside: those at its very ends are.
constexpr float viewMargin = 0.5F;

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
    if (event.GetButton() == vtkContextMouseEvent::NO_BUTTON) {
        if (GetTooltip() == nullptr) {
            return true;
        }
        if (axisBeside(event.GetPos())) {
            return Superclass::MouseLeaveEvent(event);
        }
    }
    if (m_isCancelled) {
        return true;
    }
    if (m_selecting && event.GetButton() == Actions.Select()) {
        dragSelection(event.GetPos());
        if (m_paintsBand) {
            GetScene()->SetDirty(true);
        }
        return true;
    }
    if (m_isZooming && event.GetButton() == Actions.Zoom() && !m_paintsBand) {
        MouseBox.SetWidth(event.GetPos().GetX() - MouseBox.GetX());
        MouseBox.SetHeight(event.GetPos().GetY() - MouseBox.GetY());
        return true;
    }
    return Superclass::MouseMoveEvent(event);
}

bool ChartXY::Hit(const vtkContextMouseEvent& event)
{
    return Superclass::Hit(event)
        || (GetInteractive() && Actions.Select() > vtkContextMouseEvent::NO_BUTTON
            && axisBeside(event.GetScenePos()));
}

bool ChartXY::MouseButtonPressEvent(const vtkContextMouseEvent& event)
{
    const std::optional<SelectionShape> beside = axisBeside(event.GetPos());
    const bool selects = event.GetButton() == Actions.Select();
    if (beside && !selects) {
        return false;
    }
    m_isCancelled = false;
    m_selecting.reset();
    const bool isTaken = Superclass::MouseButtonPressEvent(event);
    m_isZooming = event.GetButton() == Actions.Zoom();
    if (selects) {
        beginSelection(event.GetPos(), beside);
    }
    DrawBox = DrawBox && m_paintsBand;
    return isTaken;
}

bool ChartXY::MouseWheelEvent(const vtkContextMouseEvent& event, int delta)
{
    if (axisBeside(event.GetPos())) {
        return false;
    }
    const bool isHandled = Superclass::MouseWheelEvent(event, delta);
    // Many turns may come before the next picture, and each makes new ticks.
    keepAxesDivisible();
    return isHandled;
}

bool ChartXY::MouseButtonReleaseEvent(const vtkContextMouseEvent& event)
{
    if (m_isCancelled) {
        return true;
    }
    m_isZooming = false;
    vtkContextMouseEvent release = event;
    // Without an interactor there are no modifiers: VTK would otherwise add to and take from the plots' selections.
    release.SetInteractor(nullptr);

    if (m_selecting && event.GetButton() == Actions.Select()) {
        return endSelection(release);
    }
    m_selecting.reset();
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

std::optional<SelectionArea> ChartXY::draggedSelection() const
{
    if (!m_selecting || !m_dragPlace) {
        return {};
    }
    if (isSelectionClick()) {
        if (m_isBesideAxis) {
            return {};
        }
        const vtkVector2f reach(clickReach, -clickReach);
        return SelectionArea::rectangle(m_pressPlace - reach, m_pressPlace + reach);
    }
    if (*m_selecting == SelectionShape::Lasso) {
        std::vector<vtkVector2f> corners = m_lasso;
        corners.push_back(*m_dragPlace);
        return SelectionArea::polygon(std::move(corners));
    }
    if (*m_selecting == SelectionShape::Rectangle) {
        return SelectionArea::rectangle(m_pressPlace, *m_dragPlace);
    }
    if (std::abs(MouseBox.GetWidth()) < clickSize || std::abs(MouseBox.GetHeight()) < clickSize) {
        return {}; // VTK takes that for no selection
    }
    const vtkVector2f begin(MouseBox.GetX(), MouseBox.GetY());
    return SelectionArea::rectangle(
        begin, begin + vtkVector2f(MouseBox.GetWidth(), MouseBox.GetHeight()));
}

std::optional<vtkRectf> ChartXY::draggedZoom() const
{
    if (!m_isZooming || std::abs(MouseBox.GetWidth()) < clickSize
        || std::abs(MouseBox.GetHeight()) < clickSize) {
        return {};
    }
    return MouseBox;
}

void ChartXY::cancelDrag()
{
    m_isCancelled = true;
    m_selecting.reset();
    m_isZooming = false;
    MouseBox.SetWidth(0.0F);
    MouseBox.SetHeight(0.0F);
    endBand();
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

std::optional<SelectionShape> ChartXY::axisBeside(const vtkVector2f& place) const
{
    const auto isWithin = [&](int coordinate, int begin, int end) {
        return place[coordinate] >= static_cast<float>(begin)
            && place[coordinate] <= static_cast<float>(end);
    };
    // As in VTK's Hit(), the edge of the plot area is not in it.
    if (place.GetY() <= static_cast<float>(Point1[1]) && place.GetY() >= 0.0F
        && isWithin(0, Point1[0], Point2[0])) {
        return SelectionShape::AlongX;
    }
    if (place.GetX() <= static_cast<float>(Point1[0]) && place.GetX() >= 0.0F
        && isWithin(1, Point1[1], Point2[1])) {
        return SelectionShape::AlongY;
    }
    return {};
}

void ChartXY::beginSelection(const vtkVector2f& place, const std::optional<SelectionShape>& beside)
{
    m_selecting = beside ? *beside : m_selectionShape;
    m_isBesideAxis = beside.has_value();
    m_pressPlace = place;
    m_dragPlace.reset();
    m_dragReach = 0.0F;
    m_lasso = {place};
    if (*m_selecting == SelectionShape::Lasso) {
        DrawBox = false;
        DrawSelectionPolygon = m_paintsBand;
        SelectionPolygon.Clear();
        SelectionPolygon.AddPoint(place);
    }
}

void ChartXY::dragSelection(const vtkVector2f& place)
{
    m_dragPlace = place;
    const vtkVector2f way = place - m_pressPlace;
    switch (*m_selecting) {
    case SelectionShape::Rectangle:
        MouseBox.SetWidth(way.GetX());
        MouseBox.SetHeight(way.GetY());
        break;
    case SelectionShape::Lasso:
        m_dragReach = std::max({m_dragReach, std::abs(way.GetX()), std::abs(way.GetY())});
        if ((place - m_lasso.back()).Norm() >= lassoStep) {
            m_lasso.push_back(place);
            SelectionPolygon.AddPoint(place);
        }
        break;
    case SelectionShape::AlongX:
        dragAlong(0);
        break;
    case SelectionShape::AlongY:
        dragAlong(1);
        break;
    }
}

void ChartXY::dragAlong(std::size_t coordinate)
{
    const auto along = static_cast<int>(coordinate);
    const int across = 1 - along;
    m_dragReach = std::max(m_dragReach, std::abs((*m_dragPlace)[along] - m_pressPlace[along]));
    const auto edge = [](const int* point, int index) { return static_cast<float>(point[index]); };
    const auto inView = [&](const vtkVector2f& place) {
        return std::clamp(
            place[along], edge(Point1, along) - viewMargin, edge(Point2, along) + viewMargin);
    };
    MouseBox[along] = inView(m_pressPlace);
    MouseBox[2 + along] = inView(*m_dragPlace) - MouseBox[along];
    MouseBox[across] = edge(Point1, across) - viewMargin;
    MouseBox[2 + across] = edge(Point2, across) + viewMargin - MouseBox[across];
}

bool ChartXY::isSelectionClick() const
{
    // A drag of a rectangle to where it began is no click, and without a move its box is empty.
    if (*m_selecting == SelectionShape::Rectangle) {
        return std::abs(MouseBox.GetWidth()) < clickSize
            || std::abs(MouseBox.GetHeight()) < clickSize;
    }
    return m_dragReach <= clickReach;
}

bool ChartXY::endSelection(vtkContextMouseEvent& release)
{
    const bool isClick = isSelectionClick();
    if (!isClick) {
        dragSelection(release.GetPos());
    }
    const std::optional<SelectionArea> area = draggedSelection();
    const SelectionShape shape = *std::exchange(m_selecting, std::nullopt);
    endBand();
    if (isClick && m_isBesideAxis) {
        return true;
    }
    clearSelectionsOfSkippedPlots();
    if (!isClick && shape == SelectionShape::Lasso) {
        pickInPolygon(*area);
        return true;
    }
    if (isClick) {
        MouseBox.SetX(m_pressPlace.GetX() - clickReach);
        MouseBox.SetY(m_pressPlace.GetY() + clickReach);
        release.SetPos(m_pressPlace + vtkVector2f(clickReach, -clickReach));
    } else if (shape != SelectionShape::Rectangle) {
        release.SetPos(vtkVector2f(
            MouseBox.GetX() + MouseBox.GetWidth(), MouseBox.GetY() + MouseBox.GetHeight()));
    }
    return Superclass::MouseButtonReleaseEvent(release);
}

void ChartXY::endBand()
{
    DrawBox = false;
    DrawSelectionPolygon = false;
    SelectionPolygon.Clear();
    if (m_paintsBand && GetScene() != nullptr) {
        GetScene()->SetDirty(true);
    }
}

void ChartXY::pickInPolygon(const SelectionArea& area)
{
    // Not VTK's own release: it drops a polygon that ends at the height, or at the X, at which its last box began.
    for (vtkIdType index = 0; index < GetNumberOfPlots(); ++index) {
        vtkPlot& plot = *GetPlot(index);
        if (!plot.GetVisible() || !plot.GetSelectable()) {
            continue;
        }
        // What a plot that knows no polygons holds would count as picked.
        const vtkNew<vtkIdTypeArray> nothing;
        plot.SetSelection(nothing);
        const SelectionArea inPlot = area.inPlot(plot);
        vtkContextPolygon polygon;
        for (const vtkVector2f& corner : inPlot.corners()) {
            polygon.AddPoint(corner);
        }
        plot.SelectPointsInPolygon(polygon);
    }
    GetScene()->SetDirty(true);
    InvokeEvent(vtkCommand::SelectionChangedEvent);
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
