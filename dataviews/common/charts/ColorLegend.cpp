#include <dataviews/common/charts/ColorLegend.h>
#include <dataviews/common/charts/ColorLegendSerializer.h>
#include <dataviews/common/charts/ColorLegendTitleUpdater.h>
#include <dataviews/common/charts/ColorLegendVisibilityUpdater.h>
#include <dataviews/common/charts/TextStyle.h>
#include <dataviews/common/charts/niceScale.h>
#include <dataviews/common/views/AllowAnyValueValidator.h>
#include <dataviews/common/views/BoundedValueValidator.h>
#include <dataviews/common/views/Property.h>
#include <dataviews/common/views/UndoablePropertyProxy.h>
#include <dataviews/common/views/ValueRangeValidator.h>

#include <dataviews/platform/data/Variable.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <vtkLookupTable.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkScalarBarActor.h>
#include <vtkScalarBarRepresentation.h>
#include <vtkScalarBarWidget.h>
#include <vtkTextProperty.h>

#include <boost/make_shared.hpp>

#include <string>
#include <utility>

namespace {

/// Suspends a listener for its lifetime.
class Suspension
{
public:
    explicit Suspension(SuspendableInterface& listener)
        : m_listener(listener)
    {
        m_listener.suspend();
    }

    Suspension(const Suspension&) = delete;
    Suspension& operator=(const Suspension&) = delete;

    ~Suspension() { m_listener.resume(); }

private:
    SuspendableInterface& m_listener;
};

template <class T>
boost::shared_ptr<corvane::PropertyAbstract<T>> undoable(
    const std::string& name,
    const T& initial,
    const boost::shared_ptr<const corvane::ValidatorInterface<T>>& validator)
{
    return boost::make_shared<corvane::UndoablePropertyProxy<T>>(
        name, boost::make_shared<corvane::Property<T>>(initial, validator));
}

void makePlainBlack(vtkTextProperty& text)
{
    TextStyle style(text);
    style.setColor({0.0, 0.0, 0.0});
    // Black letters with a shadow look smeared.
    style.setItalic(false);
    style.setShadow(false);
    style.writeTo(text);
}

} // namespace

ColorLegend::ColorLegend(
    boost::shared_ptr<const corvane::PropertyAbstract<WeakPtr<Variable>>> colorVariable,
    boost::shared_ptr<const corvane::PropertyAbstract<bool>> gate,
    const DataPipelineManagerInterface& /*pipeline*/,
    vtkSmartPointer<vtkLookupTable> lookupTable,
    vtkRenderWindowInteractor& interactor,
    vtkSmartPointer<vtkScalarBarWidget> widget)
    : signalColorLegendUpdated([this] { signalColorLegendUpdatedConnected(); })
    , m_colorVariable(std::move(colorVariable))
    , m_showProperty(undoable<bool>(
          "Show Color Legend",
          DEFAULT_SHOW,
          boost::make_shared<corvane::AllowAnyValueValidator<bool>>()))
    , m_rangeTypeProperty(undoable<RangeType>(
          "Color Legend Range Type",
          DEFAULT_RANGETYPE,
          boost::make_shared<corvane::AllowAnyValueValidator<RangeType>>()))
    , m_rangeProperty(undoable<ValueRange_s<double>>(
          "Color Legend Range",
          {0.0, 0.0},
          boost::make_shared<corvane::ValueRangeValidator<double>>()))
    , m_numLabelsProperty(undoable<short>(
          "Number of Labels",
          DEFAULT_NUMLABELS,
          boost::make_shared<corvane::BoundedValueValidator<short>>(NUMLABELS_MIN, NUMLABELS_MAX)))
    , m_lookupTable(std::move(lookupTable))
    , m_widget(std::move(widget))
{
    m_widget->SetInteractor(&interactor);
    m_titleUpdater =
        boost::make_shared<ColorLegendTitleUpdater>(m_widget->GetScalarBarActor(), m_colorVariable);
    m_visibilityUpdater = boost::make_shared<ColorLegendVisibilityUpdater>(
        boost::make_shared<corvane::Property<bool>>(false),
        m_showProperty,
        std::move(gate),
        m_widget);
    m_serializer = boost::make_shared<ColorLegendSerializer>(
        m_showProperty, m_numLabelsProperty, m_rangeTypeProperty, m_rangeProperty);
    {
        const UndoStack::SuspendUndoRecording noRecording;
        initializeProperties();
        initializeColorLegendStyles();
    }
    connectToProperties();
}

ColorLegend::~ColorLegend() = default;

void ColorLegend::suspend()
{
    m_connections.block();
}

void ColorLegend::resume()
{
    m_connections.unblock();
}

boost::shared_ptr<corvane::PropertyAbstract<bool>> ColorLegend::show() const
{
    return m_showProperty;
}

boost::shared_ptr<corvane::PropertyAbstract<ColorLegend::RangeType>> ColorLegend::rangeType() const
{
    return m_rangeTypeProperty;
}

boost::shared_ptr<corvane::PropertyAbstract<ValueRange_s<double>>> ColorLegend::range() const
{
    return m_rangeProperty;
}

boost::shared_ptr<corvane::PropertyAbstract<short>> ColorLegend::numLabels() const
{
    return m_numLabelsProperty;
}

boost::shared_ptr<SerializerInterface> ColorLegend::serializer() const
{
    return m_serializer;
}

boost::shared_ptr<const corvane::PropertyAbstract<bool>> ColorLegend::visible() const
{
    return m_visibilityUpdater->visible();
}

void ColorLegend::updateColorLegend()
{
    const ValueRange_s<double> range = colorRange();
    const NiceScale scale = niceScale(range.min, range.max, m_numLabelsProperty->value());
    m_widget->GetScalarBarActor()->SetNumberOfLabels(scale.count + 1);
    m_widget->Render();
    m_lookupTable->SetRange(scale.start, scale.start + scale.count * scale.step);
    signalColorLegendUpdated();
}

void ColorLegend::initializeProperties()
{
    m_showProperty->setValue(DEFAULT_SHOW);
    initializeRangeAndNumLabelsProperties();
}

void ColorLegend::initializeRangeAndNumLabelsProperties()
{
    if (UndoStack::undoOrRedoInProgress()) {
        return; // the step brings the settings back itself
    }
    const Suspension suspension(*this);
    m_rangeTypeProperty->setValue(DEFAULT_RANGETYPE);
    m_rangeProperty->setValue(colorVariableRange());
    m_numLabelsProperty->setValue(DEFAULT_NUMLABELS);
}

void ColorLegend::initializeColorLegendStyles()
{
    vtkScalarBarActor* const bar = m_widget->GetScalarBarActor();
    bar->SetLookupTable(m_lookupTable);
    makePlainBlack(*bar->GetTitleTextProperty());
    makePlainBlack(*bar->GetLabelTextProperty());
    bar->GetLabelTextProperty()->SetJustificationToLeft();
    bar->SetLabelFormat("%G");

    // The place is the representation's, which overwrites the bar's. So is the border's color: that of the border's
    // property would be overwritten.
    vtkScalarBarRepresentation* const representation = m_widget->GetScalarBarRepresentation();
    representation->SetPosition(DEFAULT_ORIGIN[0], DEFAULT_ORIGIN[1]);
    representation->SetPosition2(DEFAULT_WIDTH, DEFAULT_HEIGHT);
    representation->SetBorderColor(0.0, 0.0, 0.0);
}

void ColorLegend::connectToProperties()
{
    m_connections.add(m_colorVariable->valueChanged.connect(
        [this](const WeakPtr<Variable>&) { initializeRangeAndNumLabelsProperties(); }));
    const auto update = [this](const auto&) { updateColorLegend(); };
    m_connections.add(m_colorVariable->valueChanged.connect(update));
    m_connections.add(m_rangeTypeProperty->valueChanged.connect(update));
    m_connections.add(m_rangeProperty->valueChanged.connect(update));
    m_connections.add(m_numLabelsProperty->valueChanged.connect(update));
}

ValueRange_s<double> ColorLegend::colorVariableRange() const
{
    if (const boost::shared_ptr<Variable> variable = m_colorVariable->value().lock()) {
        return variable->range();
    }
    return {0.0, 0.0};
}

ValueRange_s<double> ColorLegend::colorRange() const
{
    return m_rangeTypeProperty->value() == Auto ? colorVariableRange() : m_rangeProperty->value();
}

void ColorLegend::signalColorLegendUpdatedConnected() const {}
