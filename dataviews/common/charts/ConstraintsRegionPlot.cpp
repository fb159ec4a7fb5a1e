#include <dataviews/common/charts/ConstraintsRegionPlot.h>

#include <dataviews/platform/pipeline/DataPipelineManagerInterface.h>
#include <dataviews/platform/pipeline/FilterRangeFinder.h>
#include <dataviews/platform/pipeline/getFilterType.h>
#include <dataviews/platform/signals/SignalConnectionCollection.h>

#include <vtkAxis.h>
#include <vtkBrush.h>
#include <vtkContext2D.h>
#include <vtkContextScene.h>
#include <vtkNew.h>
#include <vtkPen.h>
#include <vtkRect.h>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <limits>
#include <tuple>
#include <utility>
#include <vector>

namespace {

using Handle = WeakPtr<Variable, std::size_t>;

/// What an axis shows, and how the chart shifts and scales what is painted along it.
struct Extent
{
    double min;
    double max;
    double shift;
    double scale;
};

/// A piece of an axis, shifted and scaled.
struct Span
{
    float start;
    float length;
};

/// Whether the painter has a number for what is \p value along \p axis; false for NaN.
bool isPaintable(double value, const Extent& axis)
{
    return std::abs(value * axis.scale) <= static_cast<double>(FLT_MAX);
}

bool hasRange(const Extent& axis)
{
    return axis.min < axis.max && isPaintable(axis.min + axis.shift, axis)
        && isPaintable(axis.max - axis.min, axis);
}

/// \p limit as \p axis shows it: the logarithm on a logarithmic axis, which has no place for what is not positive.
double shown(vtkAxis& axis, double limit)
{
    if (!axis.GetLogScaleActive()) {
        return limit;
    }
    return limit > 0.0 ? std::log10(limit) : -std::numeric_limits<double>::infinity();
}

/// From \p start to \p end along \p axis; ends that the painter has no numbers for are moved to the ends of the axis.
Span span(double start, double end, const Extent& axis)
{
    if (!isPaintable(start + axis.shift, axis) || !isPaintable(end - start, axis)) {
        start = std::max(start, axis.min);
        end = std::min(end, axis.max);
    }
    return {
        static_cast<float>((start + axis.shift) * axis.scale),
        static_cast<float>((end - start) * axis.scale)};
}

} // namespace

struct ConstraintsRegionPlot::Implementation
{
    const DataPipelineManagerInterface& pipeline;
    boost::shared_ptr<const VariableProperty> xVariable;
    boost::shared_ptr<const VariableProperty> yVariable;
    vtkSmartPointer<vtkPlot> dataPlot;
    SignalConnectionCollection connections;
    double xLower = 0.0;
    double xUpper = 0.0;
    double yLower = 0.0;
    double yUpper = 0.0;
    bool isXConstrained = false;
    bool isYConstrained = false;
    vtkNew<vtkPen> pen;
    vtkNew<vtkBrush> brush;

    Implementation(
        const DataPipelineManagerInterface& thePipeline,
        boost::shared_ptr<const VariableProperty> theXVariable,
        boost::shared_ptr<const VariableProperty> theYVariable,
        vtkSmartPointer<vtkPlot> theDataPlot)
        : pipeline(thePipeline)
        , xVariable(std::move(theXVariable))
        , yVariable(std::move(theYVariable))
        , dataPlot(std::move(theDataPlot))
    {
        pen->SetLineType(vtkPen::NO_PEN);
        brush->SetColor(247, 232, 222, 255); // light beige
    }

    /// The limits stay as they are where there is no range.
    void updateAxis(const Handle& variable, bool& isConstrained, double& lower, double& upper) const
    {
        const boost::shared_ptr<FilterInterface> filter = pipeline.filter(variable);
        const std::vector<boost::shared_ptr<FilterInterface>> inForce = pipeline.filtersInForce();
        isConstrained = getFilterType(filter) == FilterFactoryInterface::Range
            && std::find(inForce.begin(), inForce.end(), filter) != inForce.end();
        if (isConstrained) {
            std::tie(lower, upper) = FilterRangeFinder(filter).range();
        }
    }
};

vtkSmartPointer<ConstraintsRegionPlot> ConstraintsRegionPlot::New(
    const DataPipelineManagerInterface& pipeline,
    const boost::shared_ptr<const VariableProperty>& xVariable,
    const boost::shared_ptr<const VariableProperty>& yVariable,
    vtkSmartPointer<vtkPlot> dataPlot)
{
    auto plot = vtkSmartPointer<ConstraintsRegionPlot>::Take(
        new ConstraintsRegionPlot(pipeline, xVariable, yVariable, std::move(dataPlot)));
    plot->InitializeObjectBase();
    return plot;
}

ConstraintsRegionPlot::ConstraintsRegionPlot(
    const DataPipelineManagerInterface& pipeline,
    const boost::shared_ptr<const VariableProperty>& xVariable,
    const boost::shared_ptr<const VariableProperty>& yVariable,
    vtkSmartPointer<vtkPlot> dataPlot)
    : m_implementation(
        std::make_unique<Implementation>(pipeline, xVariable, yVariable, std::move(dataPlot)))
{
    SignalConnectionCollection& connections = m_implementation->connections;
    connections.add(xVariable->valueChanged.connect([this](const Handle&) { updateLimits(); }));
    connections.add(yVariable->valueChanged.connect([this](const Handle&) { updateLimits(); }));
    connections.add(pipeline.signalPipelineChanged.connect([this] { updateLimits(); }));
    updateLimits();
}

ConstraintsRegionPlot::~ConstraintsRegionPlot() = default;

void ConstraintsRegionPlot::updateLimits()
{
    Implementation& self = *m_implementation;
    self.updateAxis(self.xVariable->value(), self.isXConstrained, self.xLower, self.xUpper);
    self.updateAxis(self.yVariable->value(), self.isYConstrained, self.yLower, self.yUpper);
    if (Scene != nullptr) {
        Scene->SetDirty(true);
    }
}

void ConstraintsRegionPlot::setShade(const ColorBytes& color)
{
    m_implementation->brush->SetColor(color[0], color[1], color[2], 255);
    Modified();
}

bool ConstraintsRegionPlot::Paint(vtkContext2D* painter)
{
    if (XAxis != nullptr && YAxis != nullptr) {
        paintRegions(*painter);
    }
    return vtkAbstractContextItem::Paint(painter);
}

void ConstraintsRegionPlot::paintRegions(vtkContext2D& painter)
{
    const Implementation& self = *m_implementation;
    const vtkRectd shiftScale = self.dataPlot->GetShiftScale();
    Extent x = {0.0, 0.0, shiftScale.GetX(), shiftScale.GetWidth()};
    Extent y = {0.0, 0.0, shiftScale.GetY(), shiftScale.GetHeight()};
    double range[2];
    XAxis->GetRange(range);
    std::tie(x.min, x.max) = std::make_pair(range[0], range[1]);
    YAxis->GetRange(range);
    std::tie(y.min, y.max) = std::make_pair(range[0], range[1]);
    if (!hasRange(x) || !hasRange(y)) {
        return;
    }

    painter.ApplyPen(self.pen);
    painter.ApplyBrush(self.brush);
    const Span wholeX = span(x.min, x.max, x);
    const Span wholeY = span(y.min, y.max, y);
    const auto shadeX = [&](double start, double end) {
        if (end > start) {
            const Span part = span(start, end, x);
            painter.DrawRect(part.start, wholeY.start, part.length, wholeY.length);
        }
    };
    const auto shadeY = [&](double start, double end) {
        if (end > start) {
            const Span part = span(start, end, y);
            painter.DrawRect(wholeX.start, part.start, wholeX.length, part.length);
        }
    };
    if (self.isXConstrained) {
        shadeX(x.min, shown(*XAxis, self.xLower));
        shadeX(shown(*XAxis, self.xUpper), x.max);
    }
    if (self.isYConstrained) {
        shadeY(y.min, shown(*YAxis, self.yLower));
        shadeY(shown(*YAxis, self.yUpper), y.max);
    }
}

void ConstraintsRegionPlot::GetBounds(double bounds[4])
{
    bounds[0] = DBL_MAX;
    bounds[1] = -DBL_MAX;
    bounds[2] = DBL_MAX;
    bounds[3] = -DBL_MAX;
}
