#include <analyzer/views/AxisMapping.h>
#include <analyzer/views/AxisState.h>
#include <analyzer/views/ChartBand.h>
#include <analyzer/views/ChartViewAbstract.h>
#include <analyzer/views/ChoiceSetting.h>
#include <analyzer/views/HoveredCase.h>
#include <analyzer/views/LegendState.h>
#include <analyzer/views/NumberSetting.h>
#include <analyzer/views/RealSetting.h>
#include <analyzer/views/VariableSetting.h>
#include <analyzer/views/filteredOutCases.h>
#include <analyzer/views/viewState.h>
#include <analyzer/views/withNumbers.h>

#include <dataviews/common/charts/AxisDetailsCharts.h>
#include <dataviews/common/charts/ChartXY.h>
#include <dataviews/common/charts/ConstraintsRegionPlot.h>
#include <dataviews/common/charts/RasterPlotPoints.h>
#include <dataviews/common/charts/SelectionShapeProperty.h>
#include <dataviews/common/charts/SpatialVariableProperty2D.h>
#include <dataviews/common/charts/VTKChartsMouseModeProperty.h>
#include <dataviews/common/charts/vtkChartUtils.h>
#include <dataviews/common/selection/DataView2DSelectionSynchronizer.h>
#include <dataviews/common/selection/PlotSelectionModel.h>
#include <dataviews/common/views/BoundedValueValidator.h>
#include <dataviews/common/views/Property.h>
#include <dataviews/common/views/UndoablePropertyProxy.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/pipeline/DataPipelineManagerInterface.h>
#include <dataviews/platform/serialize/Serializer.h>
#include <dataviews/platform/undo/GenericUndoCommand.h>
#include <dataviews/platform/undo/UndoStack.h>
#include <dataviews/platform/vtk/vtkCvCommandProxy.h>

#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPalette>
#include <QScopedValueRollback>
#include <QTimer>

#include <vtkAxis.h>
#include <vtkBrush.h>
#include <vtkChartLegend.h>
#include <vtkCommand.h>
#include <vtkContextScene.h>
#include <vtkContextView.h>
#include <vtkDataArray.h>
#include <vtkDoubleArray.h>
#include <vtkGenericOpenGLRenderWindow.h>
#include <vtkIntArray.h>
#include <vtkPen.h>
#include <vtkPlotPoints.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkRenderer.h>
#include <vtkTable.h>
#include <vtkTableAlgorithm.h>
#include <vtkTextProperty.h>
#include <vtkVector.h>

#include <boost/make_shared.hpp>

#include <cmath>
#include <utility>

namespace analyzer {

namespace {

// Device pixels around the mouse, as around a click of the chart's own.
constexpr double pickReach = 5.0;
constexpr int axisTitleSize = 12; // points
constexpr int tickLabelSize = 11;

constexpr double legendMarkerSize = 9.0; // device-independent pixels

constexpr std::uint64_t defaultPointSize = 7; // device-independent pixels
constexpr std::uint64_t smallestPointSize = 1;
constexpr std::uint64_t largestPointSize = 40;
constexpr std::uint64_t defaultOpacity = 80; // percent
constexpr std::uint64_t largestOpacity = 100;

// Okabe and Ito's blues for points, vermilion and yellow for selected ones: told apart with every common kind of color
// blindness.
constexpr ColorBytes pointColor = {0, 114, 178};
constexpr ColorBytes pointColorOnDark = {86, 180, 233};
constexpr ColorBytes selectedColor = {213, 94, 0};
constexpr ColorBytes selectedColorOnDark = {240, 228, 66};

constexpr ColorBytes shade = {247, 232, 222}; // of what range filters leave out
constexpr ColorBytes shadeOnDark = {62, 50, 42};

constexpr std::array<int, 2> axisIndexes = {vtkAxis::BOTTOM, vtkAxis::LEFT};

bool isNumeric(const Variable& variable)
{
    return variable.isNumeric();
}

void setColor(vtkTextProperty& text, const QColor& color)
{
    text.SetColor(color.redF(), color.greenF(), color.blueF());
}

ColorBytes bytes(const QColor& color)
{
    return {
        static_cast<unsigned char>(color.red()),
        static_cast<unsigned char>(color.green()),
        static_cast<unsigned char>(color.blue())};
}

void setColor(vtkPen& pen, const QColor& color)
{
    const ColorBytes channels = bytes(color);
    pen.SetColor(channels[0], channels[1], channels[2]);
}

QColor mix(const QColor& first, const QColor& second, double share)
{
    const auto channel = [share](int a, int b) {
        return static_cast<int>(std::lround(a + (b - a) * share));
    };
    return {
        channel(first.red(), second.red()),
        channel(first.green(), second.green()),
        channel(first.blue(), second.blue())};
}

/// An undoable number from \p smallest to \p largest; changes that follow one another are one step.
boost::shared_ptr<corvane::PropertyAbstract<std::uint64_t>> boundedProperty(
    const std::string& name, std::uint64_t initial, std::uint64_t smallest, std::uint64_t largest)
{
    return boost::make_shared<corvane::UndoablePropertyProxy<std::uint64_t>>(
        name,
        boost::make_shared<corvane::Property<std::uint64_t>>(
            initial,
            boost::make_shared<corvane::BoundedValueValidator<std::uint64_t>>(smallest, largest)),
        UndoStack::nextUndoID());
}

/// The values of \p column, one of numbers, in \p rows.
vtkSmartPointer<vtkDoubleArray> numbersOf(vtkAbstractArray& column, const RowBitmap& rows)
{
    const auto numbers = vtkSmartPointer<vtkDoubleArray>::New();
    numbers->SetName(column.GetName());
    numbers->SetNumberOfValues(static_cast<vtkIdType>(rows.count()));
    withNumbers(&column, [&](const auto* values) {
        double* next = numbers->GetPointer(0);
        rows.forEach([&](std::size_t row) { *next++ = static_cast<double>(values[row]); });
    });
    return numbers;
}

} // namespace

ChartViewAbstract::ChartViewAbstract(const ViewServices& services, const std::string& domName)
    : DataViewAbstract(std::make_unique<Serializer>(domName), services.selection)
    , m_pipeline(services.pipeline)
    , m_selection(services.selection)
    , m_widget(new ChartCanvas)
    , m_chart(vtkSmartPointer<ChartXY>::New())
    , m_filteredOutPlot(vtkSmartPointer<RasterPlotPoints>::New())
    , m_hovered(services.hovered ? services.hovered : boost::make_shared<HoveredCase>())
    , m_images(services.scaledImages)
{
    buildChart();
    buildProperties();
    addPlot(*m_filteredOutPlot);
    m_filteredOutPlot->SetSelectable(false); // no search through points that nobody can pick
    m_filteredOutPlot->setDeepening(OverlapColors::Deepening::None);
    m_filteredOutPlot->SetLabel(tr("filtered out").toStdString());
}

ChartViewAbstract::~ChartViewAbstract()
{
    // The widget may have gone with its parent.
    delete m_widget.data();
}

void ChartViewAbstract::stop()
{
    vtkRenderWindow* window = m_view->GetRenderWindow();
    window->RemoveObserver(m_startObserver);
    window->RemoveObserver(m_endObserver);
    for (const int index : axisIndexes) {
        m_chart->GetAxis(index)->RemoveObserver(m_axisObserver);
    }
    if (m_widget) {
        m_widget->removeEventFilter(this);
    }
    m_connections.clear();
    m_selectedCountConnection.disconnect();
    m_synchronizer.reset();
    m_band.reset();
    m_hover.reset();
    m_settings.clear();
}

void ChartViewAbstract::suspend()
{
    endMouseGesture();
    m_band->end();
    m_connections.block();
    m_synchronizer->suspend();
}

void ChartViewAbstract::resume()
{
    m_synchronizer->resume();
    m_connections.unblock();
    takeTable();
}

QWidget& ChartViewAbstract::widget()
{
    return *m_widget;
}

void ChartViewAbstract::render()
{
    m_view->Render();
}

std::string ChartViewAbstract::title() const
{
    const std::string x = variableName(m_xVariable->value());
    const std::string y = variableName(m_yVariable->value());
    return x.empty() || y.empty() ? std::string("XY chart") : y + " over " + x;
}

const std::vector<boost::shared_ptr<SettingInterface>>& ChartViewAbstract::settings() const
{
    return m_settings;
}

boost::shared_ptr<corvane::PropertyAbstract<DataViewInterface::MouseMode>> ChartViewAbstract::
    mouseModeProperty() const
{
    return mouseMode();
}

void ChartViewAbstract::fitData()
{
    fitAxes(true, true, tr("Fit Data"));
}

void ChartViewAbstract::resetXAxis()
{
    fitAxes(true, false, tr("Reset X Axis"));
}

void ChartViewAbstract::resetYAxis()
{
    fitAxes(false, true, tr("Reset Y Axis"));
}

std::vector<LeftOutCases> ChartViewAbstract::leftOut() const
{
    return notDrawn().reasons();
}

std::set<unsigned long long> ChartViewAbstract::leftOutCaseIDs() const
{
    return caseIDs(notDrawn().rows());
}

ChartXY& ChartViewAbstract::chart() const
{
    return *m_chart;
}

vtkPlotPoints& ChartViewAbstract::filteredOutPlot() const
{
    return *m_filteredOutPlot;
}

void ChartViewAbstract::addPlot(vtkPlotPoints& plot)
{
    plot.SetVisible(false);
    plot.SetMarkerStyle(vtkPlotPoints::CIRCLE);
    m_chart->AddPlot(&plot);
    m_xSpatial->addPlot(&plot);
    m_ySpatial->addPlot(&plot);
}

void ChartViewAbstract::start(
    const std::vector<boost::shared_ptr<VariableProperty>>& furtherVariables)
{
    // What a chart begins with is no doing of the user's.
    const UndoStack::SuspendUndoRecording noRecording;
    m_regions = ConstraintsRegionPlot::New(m_pipeline, m_xVariable, m_yVariable, m_filteredOutPlot);
    m_chart->AddPlot(m_regions);
    m_chart->LowerPlot(m_regions);

    m_furtherVariables = furtherVariables;
    std::vector<boost::shared_ptr<const VariableProperty>> variables{m_xVariable, m_yVariable};
    variables.insert(variables.end(), furtherVariables.begin(), furtherVariables.end());
    m_drawable = InvalidPointsFilter::New(variables);
    m_drawable->SetInputConnection(m_pipeline.output().GetOutputPort());

    keepFurtherState();
    m_hover = std::make_unique<ChartHover>(*m_widget, *m_chart, m_hovered, m_images);
    m_synchronizer = std::make_unique<DataView2DSelectionSynchronizer>(
        m_chart,
        m_view->GetInteractor(),
        boost::make_shared<PlotSelectionModel>(m_view->GetInteractor(), m_selection));
    m_selectedCount = m_selection->cases()->size();
    m_selectedCountConnection =
        m_selection->signalSelectionChanged.connect([this](const CaseSelection& selection) {
            m_selectedCount = selection->size();
            m_band->forgetCases();
        });
    m_band = std::make_unique<ChartBand>(
        *m_widget, *m_chart, [this] { return SelectionPreview(visiblePlots(), m_selectedCount); });
    m_widget->installEventFilter(this);

    chooseFirstVariables();
    chooseFurtherVariables();
    takeTable();
    fitLater(0);
    fitLater(1);
    applyAppearance();

    m_connections.add(m_pipeline.signalPipelineChanged.connect([this] { takeTable(); }));
    m_connections.add(
        m_synchronizer->signalSelectionsUpdated.connect([this] { markForPainting(); }));
    m_connections.add(m_xVariable->valueChanged.connect(
        [this](const WeakPtr<Variable>&) { variableChanged(0); }));
    m_connections.add(m_yVariable->valueChanged.connect(
        [this](const WeakPtr<Variable>&) { variableChanged(1); }));
    for (const auto& variable : m_furtherVariables) {
        m_connections.add(
            variable->valueChanged.connect([this](const WeakPtr<Variable>&) { takeTable(); }));
    }
    m_connections.add(m_filteredOut->valueChanged.connect([this](FilteredOut) {
        takeTable();
        // Cases that appear are to be seen, unless the user looks at something else.
        for (std::size_t axis = 0; axis < axisIndexes.size(); ++axis) {
            m_isFitPending[axis] = m_isFitPending[axis] || m_isFitted[axis];
        }
    }));
    m_connections.add(m_showLegend->valueChanged.connect([this](bool) { applyAppearance(); }));
    for (const auto& number : {m_pointSize, m_opacity}) {
        m_connections.add(
            number->valueChanged.connect([this](std::uint64_t) { applyAppearance(); }));
    }
}

void ChartViewAbstract::keepFurtherState()
{
    SerializerInterface& state = serializer();
    viewState::keep<MouseMode>(
        state, "MouseMode", m_mouseMode, {{"Select", Select}, {"Pan", Pan}, {"Zoom", Zoom}});
    viewState::keep<SelectionShape>(
        state,
        "SelectionShape",
        m_selectionShape,
        {{"Rectangle", SelectionShape::Rectangle},
         {"Lasso", SelectionShape::Lasso},
         {"AlongX", SelectionShape::AlongX},
         {"AlongY", SelectionShape::AlongY}});
    viewState::keep(state, "ShowLegend", m_showLegend);
    viewState::keep<FilteredOut>(
        state,
        "FilteredOut",
        m_filteredOut,
        {{"Hidden", FilteredOut::Hidden}, {"Gray", FilteredOut::Gray}});
    viewState::keep(state, "PointSize", m_pointSize);
    viewState::keep(state, "Opacity", m_opacity);
    for (std::size_t axis = 0; axis < axisIndexes.size(); ++axis) {
        state.addSubElement(boost::make_shared<AxisState>(
            axis == 0 ? "XAxis" : "YAxis",
            axis == 0 ? *m_xAxis : *m_yAxis,
            *m_chart->GetAxis(axisIndexes[axis]),
            [this, axis] { return axisFit(axis); },
            [this, axis](AxisFit fit) { setAxisFit(axis, fit); }));
    }
    keepLegend("Legend", *m_chart->GetLegend());
}

void ChartViewAbstract::keepLegend(const std::string& elementName, vtkChartLegend& legend)
{
    serializer().addSubElement(boost::make_shared<LegendState>(
        elementName, *m_chart, legend, [this] { return m_widget->devicePixelRatioF(); }));
}

void ChartViewAbstract::addAxisSettings()
{
    const auto isOn = [](bool on) { return on; };

    const struct
    {
        const char* name;
        const char* section;
        const char* undoName;
        const AxisDetailsCharts& details;
    } axes[] = {{"x", "X axis", "X Axis", *m_xAxis}, {"y", "Y axis", "Y Axis", *m_yAxis}};

    for (const auto& axis : axes) {
        const std::string name = axis.name;
        const auto min = rangeSetting(
            name + "-min", "Minimum", axis.details.min(), tr("Change %1 Min").arg(axis.undoName));
        const auto max = rangeSetting(
            name + "-max", "Maximum", axis.details.max(), tr("Change %1 Max").arg(axis.undoName));
        const auto grid = makeSwitchSetting(
            name + "-grid", "Own grid spacing", axis.details.useCustomGridSpacing());
        const auto spacing = boost::make_shared<RealSetting>(
            name + "-spacing", "Grid spacing", axis.details.gridSpacing());
        spacing->enableWhile(axis.details.useCustomGridSpacing(), isOn);
        min->setSection(axis.section);
        max->setSection(axis.section);
        grid->setSection(axis.section);
        spacing->setSection(axis.section);
        m_settings.insert(m_settings.end(), {min, max, grid, spacing});
    }
}

boost::shared_ptr<RealSetting> ChartViewAbstract::rangeSetting(
    const std::string& name,
    const std::string& label,
    const boost::shared_ptr<corvane::PropertyAbstract<double>>& end,
    const QString& undoText)
{
    const auto setting = boost::make_shared<RealSetting>(
        name,
        label,
        [end] { return end->value(); },
        [this, end, undoText](double value) {
            const UndoStack::Macro macro(undoText);
            const std::array<AxisFit, 2> before = {axisFit(0), axisFit(1)};
            end->setValue(value);
            const std::array<AxisFit, 2> after = {axisFit(0), axisFit(1)};
            if (before == after) {
                return;
            }
            const auto setFits = [this](const std::array<AxisFit, 2>& fits) {
                setAxisFit(0, fits[0]);
                setAxisFit(1, fits[1]);
            };
            UndoStack::push(std::make_unique<GenericUndoCommand>(
                [setFits, after] { setFits(after); },
                [setFits, before] { setFits(before); },
                m_deleteSignaler,
                undoText));
        });
    setting->follow(end);
    return setting;
}

void ChartViewAbstract::addPointSettings()
{
    const auto size = boost::make_shared<NumberSetting>(
        "point-size",
        "Size",
        m_pointSize,
        NumberSetting::Range{smallestPointSize, largestPointSize, 1},
        " px");
    const auto opaque = boost::make_shared<NumberSetting>(
        "opacity", "Opacity", m_opacity, NumberSetting::Range{0, largestOpacity, 5}, " %");
    const auto outside = boost::make_shared<ChoiceSetting<FilteredOut>>(
        SettingInterface::Kind::Choice,
        "filtered-out",
        "Filtered out",
        m_filteredOut,
        ChoiceSetting<FilteredOut>::NamedValues{
            {"hidden", FilteredOut::Hidden}, {"gray", FilteredOut::Gray}});
    size->setSection("Points");
    opaque->setSection("Points");
    outside->setSection("Points");
    m_settings.insert(m_settings.end(), {size, opaque, outside});
}

void ChartViewAbstract::addSetting(boost::shared_ptr<SettingInterface> setting)
{
    m_settings.push_back(std::move(setting));
}

boost::shared_ptr<corvane::PropertyAbstract<DataViewInterface::MouseMode>> ChartViewAbstract::
    mouseMode() const
{
    return m_mouseMode;
}

bool ChartViewAbstract::caseIDAtPoint(unsigned long long& caseID)
{
    const AxisMapping bottom(*m_chart->GetAxis(vtkAxis::BOTTOM), 0);
    const AxisMapping left(*m_chart->GetAxis(vtkAxis::LEFT), 1);
    const double ratio = m_widget->devicePixelRatioF();
    const double x = m_mousePlace.x() * ratio;
    const double y = (m_widget->height() - m_mousePlace.y()) * ratio - 1;
    if (!bottom.contains(x) || !left.contains(y)) {
        return false;
    }
    const std::vector<vtkSmartPointer<vtkPlotPoints>> plots = visiblePlots();
    for (auto plot = plots.rbegin(); plot != plots.rend(); ++plot) {
        const vtkRectd shiftScale = (*plot)->GetShiftScale();
        const auto corner = [&](double reach) {
            return vtkVector2f(
                static_cast<float>(
                    (bottom.toData(x + reach) + shiftScale.GetX()) * shiftScale.GetWidth()),
                static_cast<float>(
                    (left.toData(y + reach) + shiftScale.GetY()) * shiftScale.GetHeight()));
        };
        if (vtkChartUtils::caseIDAtPoint(
                **plot,
                *(*plot)->GetInput()->GetColumn(0),
                corner(-pickReach),
                corner(pickReach),
                caseID)) {
            return true;
        }
    }
    return false;
}

bool ChartViewAbstract::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::MouseButtonPress: {
        const auto* press = static_cast<QMouseEvent*>(event);
        m_mousePlace = press->pos();
        beginMouseGesture();
        if (press->button() == Qt::RightButton) {
            adjustSelectionForMouseClickAtPoint();
        }
        break;
    }
    case QEvent::MouseButtonRelease:
        if (static_cast<QMouseEvent*>(event)->buttons() == Qt::NoButton) {
            // The chart zooms to a box when the event has passed this filter.
            QTimer::singleShot(0, this, &ChartViewAbstract::endMouseGesture);
        }
        break;
    case QEvent::KeyPress:
        if (static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape && cancelMouseGesture()) {
            return true;
        }
        break;
    case QEvent::Wheel:
        turnWheel();
        break;
    case QEvent::ContextMenu:
        emitContextMenuRequested(static_cast<QContextMenuEvent*>(event)->globalPos());
        return true;
    case QEvent::Hide:
        m_synchronizer->setSeen(false);
        break;
    case QEvent::Show:
        m_synchronizer->setSeen(true);
        applyAppearance();
        break;
    case QEvent::ScreenChangeInternal:
    case QEvent::PaletteChange:
    case QEvent::StyleChange:
        applyAppearance();
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

void ChartViewAbstract::takeTable()
{
    m_drawable->Update();
    vtkTable* table = m_drawable->GetOutput();

    const auto hasColumn = [table](const WeakPtr<Variable>& variable) {
        const std::string name = variableName(variable);
        return !name.empty()
            && vtkDataArray::SafeDownCast(table->GetColumnByName(name.c_str())) != nullptr;
    };
    m_isDrawable = hasColumn(m_xVariable->value()) && hasColumn(m_yVariable->value());
    m_chart->SetTitle(
        m_isDrawable ? std::string()
                     : tr("Nothing to draw: choose numeric variables for X and Y").toStdString());
    if (m_isDrawable) {
        showTable(*table);
    } else {
        hidePlots();
    }
    m_notDrawn.reset();
    showFilteredOut(m_isDrawable && m_filteredOut->value() == FilteredOut::Gray);

    std::vector<vtkSmartPointer<vtkPlot>> plots;
    if (m_isDrawable) {
        const std::vector<vtkSmartPointer<vtkPlotPoints>> visible = visiblePlots();
        plots.assign(visible.begin(), visible.end());
    }
    m_synchronizer->setPlotsToSynchronize(plots);
    m_synchronizer->updateChartSelections();
    tellHover();
    m_band->forgetCases();
    applyAppearance();
    emitLeftOutChanged();
}

void ChartViewAbstract::applyAppearance()
{
    if (!m_widget) {
        return; // gone with its parent; nobody sees the chart any more
    }
    const QPalette palette = m_widget->palette();
    const AppearanceColors colors{
        palette.color(QPalette::Base),
        palette.color(QPalette::Text),
        palette.color(QPalette::Base).lightness() < palette.color(QPalette::Text).lightness()};
    const QColor grid = mix(colors.background, colors.text, 0.12);

    m_view->GetRenderer()->SetBackground(
        colors.background.redF(), colors.background.greenF(), colors.background.blueF());
    for (const int index : axisIndexes) {
        vtkAxis& axis = *m_chart->GetAxis(index);
        setColor(*axis.GetTitleProperties(), colors.text);
        setColor(*axis.GetLabelProperties(), colors.text);
        axis.GetTitleProperties()->SetFontSize(axisTitleSize);
        axis.GetLabelProperties()->SetFontSize(tickLabelSize);
        setColor(*axis.GetPen(), mix(colors.background, colors.text, 0.6));
        setColor(*axis.GetGridPen(), grid);
    }
    setColor(*m_chart->GetTitleProperties(), colors.text);
    m_chart->GetTitleProperties()->SetFontSize(axisTitleSize);

    const ColorBytes gray = bytes(mix(colors.background, colors.text, 0.3));
    constexpr unsigned char grayOpacity = 150;
    m_filteredOutPlot->SetColor(gray[0], gray[1], gray[2], grayOpacity);
    m_filteredOutPlot->SetMarkerSize(pointSizePx());
    m_regions->setShade(colors.isDark ? shadeOnDark : shade);
    m_chart->setFitMargin(pointSizePx());
    applyOwnAppearance(colors);

    styleLegend(*m_chart->GetLegend(), colors);
    bool hasEntries = false;
    for (vtkIdType index = 0; index < m_chart->GetNumberOfPlots(); ++index) {
        vtkPlot& plot = *m_chart->GetPlot(index);
        hasEntries = hasEntries
            || (plot.GetVisible() && plot.GetLegendVisibility() && !plot.GetLabel(0).empty());
    }
    m_chart->SetShowLegend(m_showLegend->value() && hasEntries);
    if (m_hover) {
        m_hover->setMarkerRadius(static_cast<double>(m_pointSize->value()) / 2.0);
    }
    markForPainting();
}

void ChartViewAbstract::markForPainting()
{
    // The canvas paints a marked scene once, however often it was marked.
    m_chart->GetScene()->SetDirty(true);
}

void ChartViewAbstract::styleLegend(vtkChartLegend& legend, const AppearanceColors& colors)
{
    constexpr unsigned char legendOpacity = 220;
    setColor(*legend.GetLabelProperties(), colors.text);
    legend.GetLabelProperties()->SetFontSize(tickLabelSize);
    const ColorBytes background = bytes(colors.background);
    legend.GetBrush()->SetColor(background[0], background[1], background[2], legendOpacity);
    setColor(*legend.GetPen(), mix(colors.background, colors.text, 0.4));
}

SelectionRing::Colors ChartViewAbstract::selectionColors(
    const AppearanceColors& colors, bool isFilled)
{
    SelectionRing::Colors selection{bytes(colors.text), bytes(colors.background), {}};
    if (isFilled) {
        selection.fill = colors.isDark ? selectedColorOnDark : selectedColor;
    }
    return selection;
}

std::string ChartViewAbstract::variableName(const WeakPtr<Variable>& variable)
{
    const boost::shared_ptr<Variable> locked = variable.lock();
    return locked ? locked->name() : std::string();
}

QPoint ChartViewAbstract::placeOfRow(vtkPlotPoints& plot, long long row) const
{
    const auto valueOf = [&plot, row](const boost::shared_ptr<VariableProperty>& property) {
        vtkAbstractArray* column =
            plot.GetInput()->GetColumnByName(variableName(property->value()).c_str());
        return vtkDataArray::SafeDownCast(column)->GetTuple1(row);
    };
    const double ratio = m_widget->devicePixelRatioF();
    const double x =
        AxisMapping(*m_chart->GetAxis(vtkAxis::BOTTOM), 0).toPixel(valueOf(m_xVariable));
    const double y = AxisMapping(*m_chart->GetAxis(vtkAxis::LEFT), 1).toPixel(valueOf(m_yVariable));
    return {
        static_cast<int>(std::lround(x / ratio)),
        static_cast<int>(std::lround((m_widget->height() * ratio - 1 - y) / ratio))};
}

ColorBytes ChartViewAbstract::plainColor(const AppearanceColors& colors)
{
    return colors.isDark ? pointColorOnDark : pointColor;
}

float ChartViewAbstract::devicePixels(double size) const
{
    return static_cast<float>(size * m_widget->devicePixelRatioF());
}

float ChartViewAbstract::pointSizePx() const
{
    return devicePixels(static_cast<double>(m_pointSize->value()));
}

float ChartViewAbstract::legendMarkerPx() const
{
    return devicePixels(legendMarkerSize);
}

double ChartViewAbstract::opacity() const
{
    return static_cast<double>(m_opacity->value()) / static_cast<double>(largestOpacity);
}

unsigned char ChartViewAbstract::alpha() const
{
    constexpr double opaque = 255.0;
    return static_cast<unsigned char>(std::lround(opacity() * opaque));
}

void ChartViewAbstract::buildChart()
{
    // In this order; the other one gives the window an interactor of its own that hears nothing.
    const vtkNew<vtkGenericOpenGLRenderWindow> window;
    // Points and texts have soft edges of their own, and without a graphics card samples cost half of the frame.
    window->SetMultiSamples(0);
    m_widget->setRenderWindow(window);
    m_view->SetRenderWindow(window);
    m_widget->paintMarkedSceneOf(*m_view);
    m_view->GetScene()->AddItem(m_chart);
    m_chart->SetRenderEmpty(true);
    m_chart->setLegendsFollowSize(true);
    m_chart->SetTooltip(nullptr); // tells less than that of ChartHover, and renders the chart anew

    m_axisObserver = vtkCvCommandProxy::New([this] { axisModified(); });
    for (const int index : axisIndexes) {
        vtkAxis& axis = *m_chart->GetAxis(index);
        axis.SetTitle("");
        // Else every change of the data would move it.
        axis.SetBehavior(vtkAxis::FIXED);
        axis.AddObserver(vtkCommand::ModifiedEvent, m_axisObserver, 0.0F);
    }
    m_startObserver = vtkCvCommandProxy::New([this] { renderingStarts(); });
    m_endObserver = vtkCvCommandProxy::New([this] { renderingEnds(); });
    window->AddObserver(vtkCommand::StartEvent, m_startObserver, 0.0F);
    window->AddObserver(vtkCommand::EndEvent, m_endObserver, 0.0F);

    m_widget->setObjectName(QStringLiteral("XYChart"));
    m_widget->setAccessibleName(tr("XY chart"));
    m_widget->setFocusPolicy(Qt::StrongFocus);
    m_widget->setMinimumSize(160, 120);
}

void ChartViewAbstract::buildProperties()
{
    vtkAxis* const bottom = m_chart->GetAxis(vtkAxis::BOTTOM);
    vtkAxis* const left = m_chart->GetAxis(vtkAxis::LEFT);
    m_xSpatial = boost::make_shared<SpatialVariableProperty2D>(bottom, 0);
    m_ySpatial = boost::make_shared<SpatialVariableProperty2D>(left, 1);
    m_xVariable = boost::make_shared<corvane::UndoablePropertyProxy<WeakPtr<Variable>>>(
        "X Variable", m_xSpatial);
    m_yVariable = boost::make_shared<corvane::UndoablePropertyProxy<WeakPtr<Variable>>>(
        "Y Variable", m_ySpatial);
    m_xAxis = std::make_unique<AxisDetailsCharts>("X Axis", *m_xVariable, bottom);
    m_yAxis = std::make_unique<AxisDetailsCharts>("Y Axis", *m_yVariable, left);
    m_showLegend = boost::make_shared<corvane::UndoablePropertyProxy<bool>>(
        "Show Legend", boost::make_shared<corvane::Property<bool>>(true));
    m_filteredOut = boost::make_shared<corvane::UndoablePropertyProxy<FilteredOut>>(
        "Filtered-Out Cases",
        boost::make_shared<corvane::Property<FilteredOut>>(FilteredOut::Hidden));
    m_pointSize =
        boundedProperty("Point Size", defaultPointSize, smallestPointSize, largestPointSize);
    m_opacity = boundedProperty("Opacity", defaultOpacity, 0, largestOpacity);
    m_mouseMode = boost::make_shared<VTKChartsMouseModeProperty>(m_chart);
    m_mouseMode->setValue(Select);
    m_selectionShape = boost::make_shared<SelectionShapeProperty>(m_chart);

    viewState::keepVariable(serializer(), "XVariable", m_xVariable);
    viewState::keepVariable(serializer(), "YVariable", m_yVariable);

    addSetting(boost::make_shared<VariableSetting>(
        "x", "X axis", m_xVariable, &isNumeric, "numeric variables"));
    addSetting(boost::make_shared<VariableSetting>(
        "y", "Y axis", m_yVariable, &isNumeric, "numeric variables"));
    addSetting(boost::make_shared<ChoiceSetting<MouseMode>>(
        SettingInterface::Kind::Choice,
        "mouse-mode",
        "Mouse",
        m_mouseMode,
        ChoiceSetting<MouseMode>::NamedValues{{"select", Select}, {"pan", Pan}, {"zoom", Zoom}}));
    const auto shape = boost::make_shared<ChoiceSetting<SelectionShape>>(
        SettingInterface::Kind::Choice,
        "selection-shape",
        "Selects by",
        m_selectionShape,
        ChoiceSetting<SelectionShape>::NamedValues{
            {"rectangle", SelectionShape::Rectangle},
            {"lasso", SelectionShape::Lasso},
            {"x-range", SelectionShape::AlongX},
            {"y-range", SelectionShape::AlongY}});
    shape->enableWhile(
        boost::shared_ptr<corvane::PropertyAbstract<MouseMode>>(m_mouseMode),
        [](MouseMode mode) { return mode == Select; });
    addSetting(shape);
    addSetting(makeSwitchSetting("legend", "Legend", m_showLegend));
}

void ChartViewAbstract::chooseFirstVariables()
{
    std::vector<WeakPtr<Variable>> numeric;
    for (const WeakPtr<Variable>& handle : Project::project().variables()) {
        const boost::shared_ptr<Variable> variable = handle.lock();
        if (variable && variable->isNumeric()
            && variable->missingCount() < Project::project().caseCount()) {
            numeric.push_back(handle);
        }
    }
    const auto best = [&numeric](Variable::Nature nature, const WeakPtr<Variable>& except) {
        WeakPtr<Variable> found;
        std::size_t most = 0;
        for (const WeakPtr<Variable>& handle : numeric) {
            const boost::shared_ptr<Variable> variable = handle.lock();
            if (handle != except && variable->nature() == nature
                && variable->distinctValueCount() > most) {
                found = handle;
                most = variable->distinctValueCount();
            }
        }
        return found;
    };
    // A chart says most of variables with many values.
    WeakPtr<Variable> x = best(Variable::Input, {});
    WeakPtr<Variable> y = best(Variable::Output, {});
    if (x.isNull()) {
        x = best(Variable::Output, y);
    }
    if (y.isNull()) {
        y = best(Variable::Input, x);
    }
    // Else an identifier, and in the end a variable over itself.
    if (x.isNull()) {
        x = best(Variable::Identifier, y);
    }
    if (y.isNull()) {
        y = best(Variable::Identifier, x);
    }
    x = x.isNull() ? y : x;
    y = y.isNull() ? x : y;
    const UndoStack::SuspendUndoRecording noRecording;
    m_xVariable->setValue(x);
    m_yVariable->setValue(y);
}

void ChartViewAbstract::showFilteredOut(bool isWanted)
{
    const boost::shared_ptr<Variable> x = m_xVariable->value().lock();
    const boost::shared_ptr<Variable> y = m_yVariable->value().lock();
    const bool isShown = isWanted && x && y && filteredOutCount(m_pipeline) > 0;
    m_filteredOutPlot->SetVisible(isShown);
    if (!isShown) {
        return;
    }
    const RowBitmap rows = filteredOutRows(m_pipeline);
    const vtkNew<vtkTable> table;
    table->AddColumn(numbersOf(x->column(), rows));
    if (y != x) {
        table->AddColumn(numbersOf(y->column(), rows));
    }
    m_filteredOutPlot->SetInputData(table);
}

void ChartViewAbstract::variableChanged(int axis)
{
    takeTable();
    // Part of the step that changes the variable: redoing that fits the axis anew.
    UndoStack::push(std::make_unique<GenericUndoCommand>(
        [] {},
        [this, before = axesState()] { setAxesState(before); },
        m_deleteSignaler,
        tr("Fit Data")));
    fitLater(axis);
    emitTitleChanged();
}

AxisFit ChartViewAbstract::axisFit(std::size_t axis) const
{
    if (m_isFitPending[axis]) {
        return AxisFit::Pending;
    }
    return m_isFitted[axis] ? AxisFit::Done : AxisFit::Own;
}

void ChartViewAbstract::setAxisFit(std::size_t axis, AxisFit fit)
{
    m_isFitPending[axis] = fit == AxisFit::Pending;
    m_isFitted[axis] = fit == AxisFit::Done;
}

ChartViewAbstract::AxesState ChartViewAbstract::axesState() const
{
    AxesState state{{}, {axisFit(0), axisFit(1)}};
    m_chart->GetAxis(vtkAxis::BOTTOM)->GetRange(state.ranges.data());
    m_chart->GetAxis(vtkAxis::LEFT)->GetRange(state.ranges.data() + 2);
    return state;
}

void ChartViewAbstract::setAxesState(const AxesState& state)
{
    for (std::size_t axis = 0; axis < axisIndexes.size(); ++axis) {
        m_chart->GetAxis(axisIndexes[axis])
            ->SetRange(state.ranges[2 * axis], state.ranges[2 * axis + 1]);
    }
    for (std::size_t axis = 0; axis < axisIndexes.size(); ++axis) {
        setAxisFit(axis, state.fits[axis]);
    }
    markForPainting();
}

void ChartViewAbstract::recordAxes(const AxesState& before, const QString& text, int undoId)
{
    const AxesState after = axesState();
    if (after == before) {
        return;
    }
    UndoStack::push(std::make_unique<GenericUndoCommand>(
        [this, after] { setAxesState(after); },
        [this, before] { setAxesState(before); },
        m_deleteSignaler,
        text,
        undoId));
}

void ChartViewAbstract::fitAxes(bool x, bool y, const QString& undoText)
{
    const AxesState before = axesState();
    m_isFitPending = {m_isFitPending[0] || x, m_isFitPending[1] || y};
    render();
    recordAxes(before, undoText);
}

void ChartViewAbstract::beginMouseGesture()
{
    endMouseGesture();
    m_axesAtPress = axesState();
}

void ChartViewAbstract::endMouseGesture()
{
    if (const std::optional<AxesState> before = std::exchange(m_axesAtPress, std::nullopt)) {
        const std::array<double, 4>& now = axesState().ranges;
        const auto isMoved = [&](std::size_t axis) {
            const double width = before->ranges[axis + 1] - before->ranges[axis];
            constexpr double rounding = 1e-9;
            return std::abs(now[axis + 1] - now[axis] - width) <= std::abs(width) * rounding;
        };
        recordAxes(*before, isMoved(0) && isMoved(2) ? tr("Pan Chart") : tr("Zoom Chart"));
    }
}

bool ChartViewAbstract::cancelMouseGesture()
{
    const std::optional<AxesState> before = std::exchange(m_axesAtPress, std::nullopt);
    if (!before) {
        return false;
    }
    m_chart->cancelDrag();
    m_band->end();
    setAxesState(*before);
    return true;
}

void ChartViewAbstract::turnWheel()
{
    // Turns that follow one another are one step.
    constexpr qint64 pause = 700; // milliseconds
    if (!m_sinceWheel.isValid() || m_sinceWheel.elapsed() > pause) {
        m_wheelUndoId = UndoStack::nextUndoID();
    }
    m_sinceWheel.start();
    if (!m_axesAtWheel) {
        m_axesAtWheel = axesState();
        // The chart zooms when the event has passed this filter.
        QTimer::singleShot(0, this, [this] {
            const AxesState before = *std::exchange(m_axesAtWheel, std::nullopt);
            recordAxes(before, tr("Zoom Chart"), m_wheelUndoId);
        });
    }
}

void ChartViewAbstract::fitLater(int axis)
{
    // Nice ends are found in the next picture, which knows the size. Until then the plain ends, so that somebody may
    // set one of them.
    const auto& property = axis == 0 ? m_xVariable : m_yVariable;
    if (const boost::shared_ptr<Variable> variable = property->value().lock()) {
        const ValueRange_s<double> range = variable->range();
        if (range.min < range.max) {
            const QScopedValueRollback<bool> settingRange(m_isSettingRange, true);
            m_chart->GetAxis(axisIndexes[static_cast<std::size_t>(axis)])
                ->SetRange(range.min, range.max);
        }
    }
    m_isFitPending[static_cast<std::size_t>(axis)] = true;
    markForPainting();
}

void ChartViewAbstract::renderingStarts()
{
    m_synchronizer->catchUp(); // a report has pictures of hidden views, too
    const double reserved = layOutRightSide();
    const int* size = m_view->GetRenderWindow()->GetSize();
    m_chart->SetAutoSize(reserved <= 0.0);
    if (reserved > 0.0) {
        m_chart->SetSize(vtkRectf(
            0.0F,
            0.0F,
            static_cast<float>(std::floor(size[0] * (1.0 - reserved))),
            static_cast<float>(size[1])));
    }
    if (!m_isDrawable || (!m_isFitPending[0] && !m_isFitPending[1])) {
        return;
    }
    for (std::size_t axis = 0; axis < axisIndexes.size(); ++axis) {
        if (m_isFitPending[axis]) {
            m_chart->GetAxis(axisIndexes[axis])->SetBehavior(vtkAxis::AUTO);
        }
    }
    m_chart->RecalculateBounds();
    m_isFitting = true;
}

void ChartViewAbstract::renderingEnds()
{
    if (!std::exchange(m_isFitting, false)) {
        return;
    }
    const bool wasPainted = m_chart->GetSize().GetWidth() > 0.0F;
    for (std::size_t axis = 0; axis < axisIndexes.size(); ++axis) {
        if (m_isFitPending[axis]) {
            const AxisDetailsCharts& details = axis == 0 ? *m_xAxis : *m_yAxis;
            m_chart->GetAxis(axisIndexes[axis])
                ->SetBehavior(
                    details.useCustomGridSpacing()->value() ? vtkAxis::CUSTOM : vtkAxis::FIXED);
            m_isFitPending[axis] = !wasPainted;
            m_isFitted[axis] = wasPainted;
        }
    }
}

void ChartViewAbstract::axisModified()
{
    std::array<double, 4> ranges = {};
    m_chart->GetAxis(vtkAxis::BOTTOM)->GetRange(ranges.data());
    m_chart->GetAxis(vtkAxis::LEFT)->GetRange(ranges.data() + 2);
    const std::array<double, 4> before = std::exchange(m_axisRanges, ranges);
    // Ranges that change while VTK paints are in the picture. It does not paint again when a program sets one.
    if (ranges == before || !m_widget || m_widget->renderWindow()->CheckInRenderStatus() != 0) {
        return;
    }
    // Undo and redo bring back themselves how the ranges came to be.
    if (!m_isSettingRange && !UndoStack::undoOrRedoInProgress()) {
        // Whoever sets a range wants that and no other.
        for (std::size_t axis = 0; axis < axisIndexes.size(); ++axis) {
            const bool isSame = ranges[2 * axis] == before[2 * axis]
                && ranges[2 * axis + 1] == before[2 * axis + 1];
            m_isFitPending[axis] = m_isFitPending[axis] && isSame;
            m_isFitted[axis] = m_isFitted[axis] && isSame;
        }
    }
    markForPainting();
}

void ChartViewAbstract::tellHover()
{
    std::vector<ChartHover::Plot> hoverPlots;
    if (m_isDrawable) {
        for (const vtkSmartPointer<vtkPlotPoints>& plot : visiblePlots()) {
            if (auto hoverPlot = ChartHover::plotOf(
                    *plot->GetInput(),
                    variableName(m_xVariable->value()),
                    variableName(m_yVariable->value()))) {
                hoverPlot->drawing = plot;
                hoverPlots.push_back(std::move(*hoverPlot));
            }
        }
    }
    m_hover->setPlots(std::move(hoverPlots));
    std::vector<WeakPtr<Variable>> variables{m_xVariable->value(), m_yVariable->value()};
    for (const WeakPtr<Variable>& variable : furtherVariables()) {
        variables.push_back(variable);
    }
    m_hover->setToolTipVariables(std::move(variables));
}

const NotDrawnCases& ChartViewAbstract::notDrawn() const
{
    if (!m_notDrawn) {
        m_notDrawn.emplace();
        if (m_isDrawable) {
            m_notDrawn->addWithout(m_xVariable->value(), true);
            m_notDrawn->addWithout(m_yVariable->value(), true);
            for (const auto& variable : m_furtherVariables) {
                m_notDrawn->addWithout(variable->value(), false);
            }
            if (!m_filteredOutPlot->GetVisible()) {
                m_notDrawn->addFilteredOut(filteredOutRows(m_pipeline));
            }
        }
    }
    return *m_notDrawn;
}

} // namespace analyzer
