#include <analyzer/views/Chart3D.h>
#include <analyzer/views/Chart3DColors.h>
#include <analyzer/views/Chart3DMouse.h>
#include <analyzer/views/ChartHover.h>
#include <analyzer/views/ChoiceSetting.h>
#include <analyzer/views/HoveredCase.h>
#include <analyzer/views/LegendState.h>
#include <analyzer/views/NumberSetting.h>
#include <analyzer/views/PointColors.h>
#include <analyzer/views/RealSetting.h>
#include <analyzer/views/Scatter3DPlot.h>
#include <analyzer/views/ScatterPlot3DView.h>
#include <analyzer/views/VariableSetting.h>
#include <analyzer/views/filteredOutCases.h>
#include <analyzer/views/viewState.h>
#include <analyzer/views/withNumbers.h>

#include <dataviews/common/charts/CategoryLegend.h>
#include <dataviews/common/selection/DataView2DSelectionSynchronizer.h>
#include <dataviews/common/selection/PlotSelectionModel.h>
#include <dataviews/common/views/BoundedValueValidator.h>
#include <dataviews/common/views/DataViewVisitorInterface.h>
#include <dataviews/common/views/Property.h>
#include <dataviews/common/views/UndoablePropertyProxy.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/pipeline/DataPipelineManagerInterface.h>
#include <dataviews/platform/serialize/Serializer.h>
#include <dataviews/platform/undo/UndoStack.h>
#include <dataviews/platform/vtk/vtkCvCommandProxy.h>

#include <QAction>
#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QMenu>
#include <QPalette>
#include <QToolTip>

#include <vtkBrush.h>
#include <vtkCommand.h>
#include <vtkContextScene.h>
#include <vtkContextView.h>
#include <vtkDataArray.h>
#include <vtkGenericOpenGLRenderWindow.h>
#include <vtkIntArray.h>
#include <vtkPen.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkRenderer.h>
#include <vtkTable.h>
#include <vtkTableAlgorithm.h>
#include <vtkTextProperty.h>

#include <boost/make_shared.hpp>

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <utility>

namespace analyzer {

namespace {

// Device-independent pixels.
constexpr double pickReach = 5.0;
constexpr double legendMarkerSize = 9.0;

constexpr int titleSize = 12; // points
constexpr int legendTextSize = 11;

constexpr std::uint64_t defaultPointSize = 7; // device-independent pixels
constexpr std::uint64_t smallestPointSize = 1;
constexpr std::uint64_t largestPointSize = 40;
constexpr std::uint64_t defaultOpacity = 80; // percent
constexpr std::uint64_t largestOpacity = 100;

bool isNumeric(const Variable& variable)
{
    return variable.isNumeric();
}

std::string variableName(const WeakPtr<Variable>& variable)
{
    const boost::shared_ptr<Variable> locked = variable.lock();
    return locked ? locked->name() : std::string();
}

void setColor(vtkTextProperty& text, const QColor& color)
{
    text.SetColor(color.redF(), color.greenF(), color.blueF());
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

/// A part of the direction of view as a setting.
boost::shared_ptr<RealSetting> cameraSetting(
    const char* name,
    const char* label,
    const boost::shared_ptr<corvane::PropertyAbstract<Chart3DCamera>>& camera,
    double Chart3DCamera::*part)
{
    auto setting = boost::make_shared<RealSetting>(
        name,
        label,
        [camera, part] { return camera->value().*part; },
        [camera, part](double value) {
            Chart3DCamera changed = camera->value();
            changed.*part = value;
            camera->setValue(changed);
        });
    setting->follow(camera);
    setting->setSection("View");
    return setting;
}

/// Where the values of \p column, one of numbers, are along \p axis.
std::vector<float> placesInBox(vtkAbstractArray* column, const Chart3DAxis& axis)
{
    std::vector<float> places(static_cast<std::size_t>(column->GetNumberOfTuples()));
    withNumbers(column, [&](const auto* values) {
        std::transform(values, values + places.size(), places.begin(), [&axis](auto value) {
            return axis.toBox(static_cast<double>(value));
        });
    });
    return places;
}

} // namespace

ScatterPlot3DView::ScatterPlot3DView(const ViewServices& services)
    : DataViewAbstract(std::make_unique<Serializer>("ScatterPlot3D"), services.selection)
    , m_pipeline(services.pipeline)
    , m_widget(new ChartCanvas)
    , m_chart(vtkSmartPointer<Chart3D>::New())
    , m_plot(vtkSmartPointer<Scatter3DPlot>::New())
{
    buildChart();
    buildProperties();
    m_colors = std::make_unique<PointColors>(*m_plot, *m_chart, *m_view, m_pipeline, m_showLegend);
    buildSettings();
    keepState();
    buildListeners(services);
    chooseFirstVariables();
    takeTable();
    connectAll();
}

ScatterPlot3DView::~ScatterPlot3DView()
{
    vtkRenderWindow* window = m_view->GetRenderWindow();
    window->RemoveObserver(m_startObserver);
    window->RemoveObserver(m_endObserver);
    if (m_widget) {
        m_widget->removeEventFilter(this);
    }
    m_connections.clear();
    m_synchronizer.reset();
    m_hover.reset();
    m_mouse.reset();
    m_settings.clear();
    m_colors.reset();
    // The widget may have gone with its parent.
    delete m_widget.data();
}

void ScatterPlot3DView::accept(DataViewVisitorInterface& visitor)
{
    visitor.visit(boost::shared_ptr<ScatterPlot3DInterface>(shared_from_this()));
}

void ScatterPlot3DView::suspend()
{
    m_isSuspended = true;
    m_connections.block();
    m_synchronizer->suspend();
    m_mouse->setEnabled(false);
    m_refining.stop();
    // The hovered case is looked for among no points.
    m_hover->setPlots({});
}

void ScatterPlot3DView::resume()
{
    m_isSuspended = false;
    m_synchronizer->resume();
    m_connections.unblock();
    m_mouse->setEnabled(true);
    takeTable();
}

QWidget& ScatterPlot3DView::widget()
{
    return *m_widget;
}

void ScatterPlot3DView::render()
{
    // Whoever asks for a picture wants all of it.
    m_plot->setPrompt(false);
    m_view->Render();
    m_plot->setPrompt(true);
}

std::string ScatterPlot3DView::kind() const
{
    return "scatter3d";
}

std::string ScatterPlot3DView::title() const
{
    const std::string x = variableName(m_variables[0]->value());
    const std::string y = variableName(m_variables[1]->value());
    const std::string z = variableName(m_variables[2]->value());
    const std::string color = variableName(m_colors->variable()->value());
    const std::string axes =
        x.empty() || y.empty() || z.empty() ? "3-D chart" : z + " over " + x + " and " + y;
    return axes + (color.empty() ? color : ", colored by " + color);
}

const std::vector<boost::shared_ptr<SettingInterface>>& ScatterPlot3DView::settings() const
{
    return m_settings;
}

boost::shared_ptr<corvane::PropertyAbstract<DataViewInterface::MouseMode>> ScatterPlot3DView::
    mouseModeProperty() const
{
    return mouseMode();
}

void ScatterPlot3DView::fitData()
{
    m_camera->setValue(Chart3DCamera());
}

void ScatterPlot3DView::resetXAxis()
{
    Chart3DCamera camera = m_camera->value();
    camera.azimuth = Chart3DCamera().azimuth;
    camera.panX = 0.0;
    m_camera->setValue(camera);
}

void ScatterPlot3DView::resetYAxis()
{
    Chart3DCamera camera = m_camera->value();
    camera.elevation = Chart3DCamera().elevation;
    camera.panY = 0.0;
    m_camera->setValue(camera);
}

std::vector<LeftOutCases> ScatterPlot3DView::leftOut() const
{
    return notDrawn().reasons();
}

std::set<unsigned long long> ScatterPlot3DView::leftOutCaseIDs() const
{
    return caseIDs(notDrawn().rows());
}

void ScatterPlot3DView::addContextActions(QMenu& menu)
{
    const struct
    {
        QString text;
        double azimuth;
        double elevation;
    } directions[] = {
        {tr("Look Along &X"), 90.0, 0.0},
        {tr("Look Along &Y"), 0.0, 0.0},
        {tr("Look From &Above"), 0.0, Chart3DCamera::largestElevation}};

    for (const auto& direction : directions) {
        const double azimuth = direction.azimuth;
        const double elevation = direction.elevation;
        connect(menu.addAction(direction.text), &QAction::triggered, this, [=] {
            Chart3DCamera camera = m_camera->value();
            camera.azimuth = azimuth;
            camera.elevation = elevation;
            m_camera->setValue(camera);
        });
    }
}

boost::shared_ptr<ScatterPlot3DView::VariableProperty> ScatterPlot3DView::xVariable() const
{
    return m_variables[0];
}

boost::shared_ptr<ScatterPlot3DView::VariableProperty> ScatterPlot3DView::yVariable() const
{
    return m_variables[1];
}

boost::shared_ptr<ScatterPlot3DView::VariableProperty> ScatterPlot3DView::zVariable() const
{
    return m_variables[2];
}

boost::shared_ptr<corvane::PropertyAbstract<bool>> ScatterPlot3DView::showLegend() const
{
    return m_showLegend;
}

Scatter3DPlot& ScatterPlot3DView::plot() const
{
    return *m_plot;
}

QPoint ScatterPlot3DView::placeOfRow(long long row) const
{
    const std::vector<float>& places = m_plot->points().places();
    const auto index = static_cast<std::size_t>(row);
    const double ratio = m_widget->devicePixelRatioF();
    return {
        static_cast<int>(std::lround(places[2 * index] / ratio)),
        static_cast<int>(std::lround(m_widget->height() - places[2 * index + 1] / ratio))};
}

boost::shared_ptr<corvane::PropertyAbstract<DataViewInterface::MouseMode>> ScatterPlot3DView::
    mouseMode() const
{
    return DataViewAbstract::mouseMode();
}

bool ScatterPlot3DView::caseIDAtPoint(unsigned long long& caseID)
{
    if (!m_plot->GetVisible()) {
        return false;
    }
    const double ratio = m_widget->devicePixelRatioF();
    const vtkIdType row = m_plot->points().nearestRow(
        static_cast<float>(m_mousePlace.x() * ratio),
        static_cast<float>((m_widget->height() - m_mousePlace.y()) * ratio),
        std::max(devicePixels(pickReach), m_plot->GetMarkerSize() / 2.0F));
    const auto* ids = vtkIntArray::SafeDownCast(m_plot->GetInput()->GetColumn(0));
    if (row < 0 || ids == nullptr) {
        return false;
    }
    caseID = static_cast<unsigned long long>(ids->GetValue(row));
    return true;
}

bool ScatterPlot3DView::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::ContextMenu: {
        // With the mouse it comes before anybody knows whether the button will drag: Chart3DMouse tells.
        const auto* menu = static_cast<QContextMenuEvent*>(event);
        if (menu->reason() != QContextMenuEvent::Mouse && !m_isSuspended) {
            emitContextMenuRequested(menu->globalPos());
        }
        return true;
    }
    case QEvent::ToolTip: {
        const auto* help = static_cast<QHelpEvent*>(event);
        const QString text = m_colors->toolTip(
            (help->x() + 0.5) / m_widget->width(), 1.0 - (help->y() + 0.5) / m_widget->height());
        if (!text.isEmpty()) {
            QToolTip::showText(help->globalPos(), text, m_widget);
            return true;
        }
        break;
    }
    case QEvent::Show:
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

void ScatterPlot3DView::buildChart()
{
    // In this order; the other one gives the window an interactor of its own that hears nothing.
    const vtkNew<vtkGenericOpenGLRenderWindow> window;
    // Points and texts have soft edges of their own, and without a graphics card samples cost half of the frame.
    window->SetMultiSamples(0);
    m_widget->setRenderWindow(window);
    m_view->SetRenderWindow(window);
    m_widget->paintMarkedSceneOf(*m_view);
    m_view->GetScene()->AddItem(m_chart);
    m_chart->setLegendsFollowSize(true);
    m_plot->SetVisible(false);
    m_plot->SetMarkerStyle(vtkPlotPoints::CIRCLE);
    m_plot->SetLegendVisibility(false);
    m_plot->setPrompt(true);
    m_chart->AddPlot(m_plot);

    m_startObserver = vtkCvCommandProxy::New([this] { renderingStarts(); });
    m_endObserver = vtkCvCommandProxy::New([this] { renderingEnds(); });
    window->AddObserver(vtkCommand::StartEvent, m_startObserver, 0.0F);
    window->AddObserver(vtkCommand::EndEvent, m_endObserver, 0.0F);

    m_widget->setObjectName(QStringLiteral("Chart3D"));
    m_widget->setAccessibleName(tr("3-D chart"));
    m_widget->setFocusPolicy(Qt::StrongFocus);
    m_widget->setMinimumSize(160, 120);
}

void ScatterPlot3DView::buildProperties()
{
    constexpr std::array<const char*, dimensions> names = {
        "X Variable", "Y Variable", "Z Variable"};
    for (std::size_t axis = 0; axis < dimensions; ++axis) {
        m_variables[axis] = boost::make_shared<corvane::UndoablePropertyProxy<WeakPtr<Variable>>>(
            names[axis],
            boost::make_shared<corvane::Property<WeakPtr<Variable>>>(WeakPtr<Variable>()));
    }
    m_showLegend = boost::make_shared<corvane::UndoablePropertyProxy<bool>>(
        "Show Legend", boost::make_shared<corvane::Property<bool>>(true));
    m_pointSize =
        boundedProperty("Point Size", defaultPointSize, smallestPointSize, largestPointSize);
    m_opacity = boundedProperty("Opacity", defaultOpacity, 0, largestOpacity);
    m_plainCamera = boost::make_shared<corvane::Property<Chart3DCamera>>(
        Chart3DCamera(), boost::make_shared<Chart3DCameraValidator>());
    m_camera = boost::make_shared<corvane::UndoablePropertyProxy<Chart3DCamera>>(
        "Direction of View", m_plainCamera);
}

void ScatterPlot3DView::buildSettings()
{
    const struct
    {
        const char* name;
        const char* label;
    } axes[dimensions] = {{"x", "X axis"}, {"y", "Y axis"}, {"z", "Z axis"}};

    for (std::size_t axis = 0; axis < dimensions; ++axis) {
        m_settings.push_back(boost::make_shared<VariableSetting>(
            axes[axis].name, axes[axis].label, m_variables[axis], &isNumeric, "numeric variables"));
    }
    m_settings.push_back(boost::make_shared<ChoiceSetting<MouseMode>>(
        SettingInterface::Kind::Choice,
        "mouse-mode",
        "Mouse",
        mouseMode(),
        ChoiceSetting<MouseMode>::NamedValues{{"select", Select}, {"pan", Pan}, {"zoom", Zoom}}));
    m_settings.push_back(makeSwitchSetting("legend", "Legend", m_showLegend));
    for (const boost::shared_ptr<SettingInterface>& setting : m_colors->makeSettings()) {
        m_settings.push_back(setting);
    }
    m_settings.push_back(
        cameraSetting("azimuth", "Azimuth (°)", m_camera, &Chart3DCamera::azimuth));
    m_settings.push_back(
        cameraSetting("elevation", "Elevation (°)", m_camera, &Chart3DCamera::elevation));
    m_settings.push_back(cameraSetting("zoom", "Zoom", m_camera, &Chart3DCamera::zoom));
    const auto size = boost::make_shared<NumberSetting>(
        "point-size",
        "Size",
        m_pointSize,
        NumberSetting::Range{smallestPointSize, largestPointSize, 1},
        " px");
    const auto opaque = boost::make_shared<NumberSetting>(
        "opacity", "Opacity", m_opacity, NumberSetting::Range{0, largestOpacity, 5}, " %");
    size->setSection("Points");
    opaque->setSection("Points");
    m_settings.insert(m_settings.end(), {size, opaque});
}

void ScatterPlot3DView::keepState()
{
    SerializerInterface& state = serializer();
    viewState::keepVariable(state, "XVariable", m_variables[0]);
    viewState::keepVariable(state, "YVariable", m_variables[1]);
    viewState::keepVariable(state, "ZVariable", m_variables[2]);
    m_colors->keepState(state);
    viewState::keep(state, "ShowLegend", m_showLegend);
    viewState::keep(state, "PointSize", m_pointSize);
    viewState::keep(state, "Opacity", m_opacity);
    viewState::keep<MouseMode>(
        state, "MouseMode", mouseMode(), {{"Select", Select}, {"Pan", Pan}, {"Zoom", Zoom}});

    const struct
    {
        const char* name;
        double Chart3DCamera::*part;
    } parts[] = {
        {"Azimuth", &Chart3DCamera::azimuth},
        {"Elevation", &Chart3DCamera::elevation},
        {"Zoom", &Chart3DCamera::zoom},
        {"PanX", &Chart3DCamera::panX},
        {"PanY", &Chart3DCamera::panY}};

    const auto camera = boost::make_shared<Serializer>("Camera");
    for (const auto& [name, part] : parts) {
        camera->addSubElement(boost::make_shared<GenericSerializer<double>>(
            name,
            [this, part = part] { return m_camera->value().*part; },
            [this, part = part](double value) {
                Chart3DCamera changed = m_camera->value();
                changed.*part = value;
                m_camera->setValue(changed);
            }));
    }
    state.addSubElement(camera);
    state.addSubElement(boost::make_shared<LegendState>(
        "CategoryLegend", *m_chart, m_colors->categoryLegend(), [this] {
            return m_widget->devicePixelRatioF();
        }));
}

void ScatterPlot3DView::buildListeners(const ViewServices& services)
{
    std::vector<boost::shared_ptr<const VariableProperty>> shown(
        m_variables.begin(), m_variables.end());
    shown.push_back(m_colors->variable());
    m_drawable = InvalidPointsFilter::New(shown);
    m_drawable->SetInputConnection(m_pipeline.output().GetOutputPort());

    m_synchronizer = std::make_unique<DataView2DSelectionSynchronizer>(
        m_chart,
        m_view->GetInteractor(),
        boost::make_shared<PlotSelectionModel>(m_view->GetInteractor(), services.selection));
    // Before the others: filters that were installed later see what this one takes.
    m_mouse =
        std::make_unique<Chart3DMouse>(*m_widget, *m_chart, *m_plot, m_plainCamera, mouseMode());
    connect(m_mouse.get(), &Chart3DMouse::menuRequested, this, &ScatterPlot3DView::showMenu);
    connect(&m_refining, &QTimer::timeout, this, &ScatterPlot3DView::refine);
    connect(m_mouse.get(), &Chart3DMouse::paintingNeeded, this, [this] { markForPainting(); });
    m_hover = std::make_unique<ChartHover>(
        *m_widget,
        *m_chart,
        services.hovered ? services.hovered : boost::make_shared<HoveredCase>(),
        services.scaledImages);
    m_widget->installEventFilter(this);
}

void ScatterPlot3DView::connectAll()
{
    m_connections.add(m_pipeline.signalPipelineChanged.connect([this] { takeTable(); }));
    m_connections.add(
        m_synchronizer->signalSelectionsUpdated.connect([this] { markForPainting(); }));
    std::vector<boost::shared_ptr<VariableProperty>> variables(
        m_variables.begin(), m_variables.end());
    variables.push_back(m_colors->variable());
    for (const boost::shared_ptr<VariableProperty>& variable : variables) {
        m_connections.add(variable->valueChanged.connect([this](const WeakPtr<Variable>&) {
            takeTable();
            emitTitleChanged();
        }));
    }
    m_connections.add(m_colors->signalPaintingNeeded.connect([this] { markForPainting(); }));
    m_connections.add(
        m_camera->valueChanged.connect([this](const Chart3DCamera&) { markForPainting(); }));
    for (const auto& number : {m_pointSize, m_opacity}) {
        m_connections.add(
            number->valueChanged.connect([this](std::uint64_t) { applyAppearance(); }));
    }
}

void ScatterPlot3DView::chooseFirstVariables()
{
    std::vector<boost::shared_ptr<Variable>> candidates;
    for (const WeakPtr<Variable>& handle : Project::project().variables()) {
        const boost::shared_ptr<Variable> variable = handle.lock();
        if (variable && variable->isNumeric()
            && variable->missingCount() < Project::project().caseCount()) {
            candidates.push_back(variable);
        }
    }
    // A chart says most of variables with many values.
    std::stable_sort(candidates.begin(), candidates.end(), [](const auto& left, const auto& right) {
        return left->distinctValueCount() > right->distinctValueCount();
    });
    const auto take = [&candidates](std::initializer_list<Variable::Nature> natures) {
        boost::shared_ptr<Variable> taken;
        for (const Variable::Nature nature : natures) {
            const auto best =
                std::find_if(candidates.begin(), candidates.end(), [nature](const auto& variable) {
                    return variable->nature() == nature;
                });
            if (best != candidates.end()) {
                taken = *best;
                candidates.erase(best);
                break;
            }
        }
        return taken;
    };
    constexpr auto input = Variable::Input;
    constexpr auto output = Variable::Output;
    constexpr auto identifier = Variable::Identifier;
    boost::shared_ptr<Variable> z = take({output});
    boost::shared_ptr<Variable> x = take({input, output, identifier});
    boost::shared_ptr<Variable> y = take({input, output, identifier});
    if (!z) {
        z = take({input, identifier});
    }
    // With fewer than three, one goes along several axes.
    x = x ? x : z;
    y = y ? y : x;
    z = z ? z : y;
    const UndoStack::SuspendUndoRecording noRecording;
    m_variables[0]->setValue(x);
    m_variables[1]->setValue(y);
    m_variables[2]->setValue(z);
}

void ScatterPlot3DView::takeTable()
{
    m_drawable->Update();
    vtkTable* table = m_drawable->GetOutput();
    m_isDrawable =
        std::all_of(m_variables.begin(), m_variables.end(), [table](const auto& property) {
            const std::string name = variableName(property->value());
            return !name.empty()
                && vtkDataArray::SafeDownCast(table->GetColumnByName(name.c_str())) != nullptr;
        });
    m_chart->SetTitle(
        m_isDrawable
            ? std::string()
            : tr("Nothing to draw: choose numeric variables for X, Y and Z").toStdString());
    m_notDrawn.reset();
    if (m_isDrawable) {
        showTable(*table);
        m_synchronizer->setPlotsToSynchronize({m_plot});
    } else {
        m_plot->SetVisible(false);
        m_colors->apply();
        m_synchronizer->setPlotsToSynchronize({});
        m_hover->setPlots({});
    }
    m_synchronizer->updateChartSelections();
    applyAppearance();
    emitLeftOutChanged();
}

void ScatterPlot3DView::showTable(vtkTable& table)
{
    Chart3DBox::Axes axes;
    Scatter3DPoints::Columns columns;
    for (std::size_t axis = 0; axis < dimensions; ++axis) {
        const boost::shared_ptr<Variable> variable = m_variables[axis]->value().lock();
        axes[axis] = Chart3DAxis(variable->name(), variable->range());
        columns[axis] = placesInBox(table.GetColumnByName(variable->name().c_str()), axes[axis]);
    }
    m_plot->setPoints(std::move(axes), std::move(columns));

    const vtkNew<vtkTable> cases;
    cases->ShallowCopy(&table);
    m_colors->prepare(*cases);
    // The chart asks for two columns, if only to know whether they hold texts.
    m_plot->SetInputData(
        cases, variableName(m_variables[0]->value()), variableName(m_variables[1]->value()));
    m_plot->SetVisible(true);
    m_colors->apply();
    tellHover(table);
}

void ScatterPlot3DView::tellHover(vtkTable& table)
{
    // The hidden axes of the chart run over pixels.
    ChartHover::Plot plot{
        vtkIntArray::SafeDownCast(table.GetColumn(0)),
        m_plot->points().placesX(),
        m_plot->points().placesY()};
    std::vector<ChartHover::Plot> plots;
    if (plot.caseIDs != nullptr) {
        plots.push_back(std::move(plot));
    }
    m_hover->setPlots(std::move(plots));
    m_hover->setToolTipVariables(
        {m_variables[0]->value(),
         m_variables[1]->value(),
         m_variables[2]->value(),
         m_colors->variable()->value()});
}

void ScatterPlot3DView::applyAppearance()
{
    if (!m_widget) {
        return; // gone with its parent; nobody sees the chart any more
    }
    const Chart3DColors colors(m_widget->palette());
    const auto ratio = static_cast<float>(m_widget->devicePixelRatioF());
    const auto size = static_cast<double>(m_pointSize->value());
    m_view->GetRenderer()->SetBackground(
        colors.background.redF(), colors.background.greenF(), colors.background.blueF());
    setColor(*m_chart->GetTitleProperties(), colors.text);
    m_chart->GetTitleProperties()->SetFontSize(titleSize);

    m_plot->setBoxLook({Chart3DColors::bytes(colors.text), colors.edge, colors.grid, ratio});
    constexpr double opaque = 255.0;
    m_plot->SetColor(
        colors.point[0],
        colors.point[1],
        colors.point[2],
        static_cast<unsigned char>(std::lround(opacity() * opaque)));
    m_plot->SetMarkerSize(devicePixels(size));
    m_plot->setSelectionColors(colors.selection(!m_colors->isColored()));

    constexpr double legendEdgeShare = 0.4;
    constexpr unsigned char legendOpacity = 220;
    CategoryLegend& legend = m_colors->categoryLegend();
    setColor(*legend.GetLabelProperties(), colors.text);
    legend.GetLabelProperties()->SetFontSize(legendTextSize);
    const ColorBytes background = Chart3DColors::bytes(colors.background);
    legend.GetBrush()->SetColor(background[0], background[1], background[2], legendOpacity);
    const ColorBytes edge = colors.mixed(legendEdgeShare);
    legend.GetPen()->SetColor(edge[0], edge[1], edge[2]);
    m_colors->applyAppearance(
        {colors.text, colors.isDark, opacity(), devicePixels(legendMarkerSize)});
    m_hover->setMarkerRadius(size / 2.0);
    markForPainting();
}

void ScatterPlot3DView::markForPainting()
{
    // The canvas paints a marked scene once, however often it was marked.
    m_chart->GetScene()->SetDirty(true);
}

void ScatterPlot3DView::renderingStarts()
{
    if (!m_widget) {
        return;
    }
    m_colors->fitBar(m_widget->width(), m_widget->height());
    const int* size = m_view->GetRenderWindow()->GetSize();
    const double share = 1.0 - m_colors->reservedWidth();
    m_chart->cover(static_cast<float>(std::floor(size[0] * share)), static_cast<float>(size[1]));
    m_plot->setView(m_camera->value(), m_chart->GetSize());
}

void ScatterPlot3DView::renderingEnds()
{
    m_chart->updateHiddenAxes();
    if (m_plot->isUnrefined()) {
        m_refining.start();
    }
}

void ScatterPlot3DView::refine()
{
    if (m_plot->refine()) {
        markForPainting();
    }
    if (!m_plot->isUnrefined()) {
        m_refining.stop();
    }
}

void ScatterPlot3DView::showMenu(const QPoint& place)
{
    m_mousePlace = place;
    adjustSelectionForMouseClickAtPoint();
    emitContextMenuRequested(m_widget->mapToGlobal(place));
}

const NotDrawnCases& ScatterPlot3DView::notDrawn() const
{
    if (!m_notDrawn) {
        m_notDrawn.emplace();
        if (m_isDrawable) {
            for (const boost::shared_ptr<VariableProperty>& variable : m_variables) {
                m_notDrawn->addWithout(variable->value(), true);
            }
            m_notDrawn->addWithout(m_colors->variable()->value(), false);
            m_notDrawn->addFilteredOut(filteredOutRows(m_pipeline));
        }
    }
    return *m_notDrawn;
}

double ScatterPlot3DView::opacity() const
{
    return static_cast<double>(m_opacity->value()) / static_cast<double>(largestOpacity);
}

float ScatterPlot3DView::devicePixels(double size) const
{
    return static_cast<float>(size * m_widget->devicePixelRatioF());
}

} // namespace analyzer
