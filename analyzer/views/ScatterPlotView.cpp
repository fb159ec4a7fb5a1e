#include <analyzer/views/ChoiceSetting.h>
#include <analyzer/views/ScatterPlotView.h>
#include <analyzer/views/VariableSetting.h>

#include <dataviews/common/charts/ChartXY.h>
#include <dataviews/common/charts/SpatialVariableProperty2D.h>
#include <dataviews/common/charts/VTKChartsMouseModeProperty.h>
#include <dataviews/common/charts/vtkChartUtils.h>
#include <dataviews/common/selection/DataView2DSelectionSynchronizer.h>
#include <dataviews/common/selection/PlotSelectionModel.h>
#include <dataviews/common/views/DataViewVisitorInterface.h>
#include <dataviews/common/views/Property.h>
#include <dataviews/common/views/UndoablePropertyProxy.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/pipeline/DataPipelineManagerInterface.h>
#include <dataviews/platform/serialize/Serializer.h>
#include <dataviews/platform/undo/UndoStack.h>
#include <dataviews/platform/vtk/vtkCvCommandProxy.h>

#include <QContextMenuEvent>
#include <QMouseEvent>
#include <QPalette>

#include <vtkAbstractArray.h>
#include <vtkAxis.h>
#include <vtkBrush.h>
#include <vtkChartLegend.h>
#include <vtkCommand.h>
#include <vtkContextScene.h>
#include <vtkContextView.h>
#include <vtkDataArray.h>
#include <vtkGenericOpenGLRenderWindow.h>
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

namespace analyzer {

namespace {

using VariableProperty = corvane::PropertyAbstract<WeakPtr<Variable>>;

constexpr double pickReach =
    5.0; // device pixels around the mouse, as around a click of the chart's own
constexpr float pointSize = 7.0F; // device-independent pixels
constexpr int axisTitleSize = 12; // points
constexpr int tickLabelSize = 11;

// Okabe and Ito's blue and orange: told apart with every common kind of color blindness, on light and on dark.
constexpr unsigned char pointColor[] = {0, 114, 178};
constexpr unsigned char pointColorOnDark[] = {86, 180, 233};
constexpr unsigned char selectedColor[] = {213, 94, 0};
constexpr unsigned char selectedColorOnDark[] = {240, 228, 66};

bool isNumeric(const Variable& variable)
{
    return variable.isNumeric();
}

/// How one axis maps data to device pixels of the scene; in double precision, since data may lie far from zero.
class AxisMapping
{
public:
    AxisMapping(vtkAxis& axis, int coordinate)
        : m_start(axis.GetPoint1()[coordinate])
        , m_end(axis.GetPoint2()[coordinate])
        , m_min(axis.GetMinimum())
        , m_max(axis.GetMaximum())
    {}

    [[nodiscard]] bool contains(double pixel) const { return pixel >= m_start && pixel <= m_end; }

    [[nodiscard]] double toData(double pixel) const
    {
        return m_min + (pixel - m_start) / (m_end - m_start) * (m_max - m_min);
    }

    [[nodiscard]] double toPixel(double data) const
    {
        return m_start + (data - m_min) / (m_max - m_min) * (m_end - m_start);
    }

private:
    double m_start;
    double m_end;
    double m_min;
    double m_max;
};

void setColor(vtkTextProperty& text, const QColor& color)
{
    text.SetColor(color.redF(), color.greenF(), color.blueF());
}

void setColor(vtkPen& pen, const QColor& color)
{
    pen.SetColor(
        static_cast<unsigned char>(color.red()),
        static_cast<unsigned char>(color.green()),
        static_cast<unsigned char>(color.blue()));
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

} // namespace

ScatterPlotView::ScatterPlotView(
    const DataPipelineManagerInterface& pipeline,
    boost::shared_ptr<SelectionModelInterface> selectionModel)
    : DataViewAbstract(std::make_unique<Serializer>("ScatterPlot2D"), selectionModel)
    , m_pipeline(pipeline)
    , m_widget(new QVTKOpenGLNativeWidget)
    , m_chart(vtkSmartPointer<ChartXY>::New())
{
    buildChart();
    buildProperties();
    m_synchronizer = std::make_unique<DataView2DSelectionSynchronizer>(
        m_chart,
        m_view->GetInteractor(),
        boost::make_shared<PlotSelectionModel>(m_view->GetInteractor(), std::move(selectionModel)));
    chooseFirstVariables();
    takeTable();

    m_connections.add(m_pipeline.signalPipelineChanged.connect([this] { takeTable(); }));
    m_connections.add(
        m_synchronizer->signalSelectionsUpdated.connect([this] { markForPainting(); }));
    for (const auto& variable : {m_xVariable, m_yVariable}) {
        m_connections.add(variable->valueChanged.connect(
            [this](const WeakPtr<Variable>&) { variableChanged(); }));
    }
    m_connections.add(m_showLegend->valueChanged.connect([this](bool) { applyLegend(); }));
}

ScatterPlotView::~ScatterPlotView()
{
    for (const int index : {vtkAxis::BOTTOM, vtkAxis::LEFT}) {
        m_chart->GetAxis(index)->RemoveObserver(m_axisObserver);
    }
    m_connections.clear();
    m_synchronizer.reset();
    // The widget may have gone with its parent.
    delete m_widget.data();
}

void ScatterPlotView::suspend()
{
    m_connections.block();
    m_synchronizer->suspend();
}

void ScatterPlotView::resume()
{
    m_synchronizer->resume();
    m_connections.unblock();
    takeTable();
    applyLegend();
}

QWidget& ScatterPlotView::widget()
{
    return *m_widget;
}

void ScatterPlotView::accept(DataViewVisitorInterface& visitor)
{
    visitor.visit(boost::shared_ptr<ScatterPlot2DInterface>(shared_from_this()));
}

void ScatterPlotView::render()
{
    m_view->Render();
}

boost::shared_ptr<VariableProperty> ScatterPlotView::xVariable() const
{
    return m_xVariable;
}

boost::shared_ptr<VariableProperty> ScatterPlotView::yVariable() const
{
    return m_yVariable;
}

boost::shared_ptr<corvane::PropertyAbstract<bool>> ScatterPlotView::showLegend() const
{
    return m_showLegend;
}

std::string ScatterPlotView::kind() const
{
    return "scatter";
}

std::string ScatterPlotView::title() const
{
    const std::string x = variableName(m_xVariable->value());
    const std::string y = variableName(m_yVariable->value());
    return x.empty() || y.empty() ? std::string("XY chart") : y + " over " + x;
}

const std::vector<boost::shared_ptr<SettingInterface>>& ScatterPlotView::settings() const
{
    return m_settings;
}

boost::shared_ptr<corvane::PropertyAbstract<DataViewInterface::MouseMode>> ScatterPlotView::
    mouseModeProperty() const
{
    return mouseMode();
}

void ScatterPlotView::fitData()
{
    vtkChartUtils::fitData(*m_chart, *this);
}

void ScatterPlotView::resetXAxis()
{
    vtkChartUtils::resetAxisRange(*m_chart, *m_chart->GetAxis(vtkAxis::BOTTOM), *this);
}

void ScatterPlotView::resetYAxis()
{
    vtkChartUtils::resetAxisRange(*m_chart, *m_chart->GetAxis(vtkAxis::LEFT), *this);
}

ChartXY& ScatterPlotView::chart() const
{
    return *m_chart;
}

vtkPlotPoints& ScatterPlotView::plot() const
{
    return *m_plot;
}

QPoint ScatterPlotView::placeOfRow(long long row) const
{
    const auto valueOf = [this, row](const boost::shared_ptr<VariableProperty>& property) {
        vtkAbstractArray* column =
            m_plot->GetInput()->GetColumnByName(variableName(property->value()).c_str());
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

boost::shared_ptr<corvane::PropertyAbstract<DataViewInterface::MouseMode>> ScatterPlotView::
    mouseMode() const
{
    return m_mouseMode;
}

bool ScatterPlotView::caseIDAtPoint(unsigned long long& caseID)
{
    if (!m_plot->GetVisible()) {
        return false;
    }
    const AxisMapping bottom(*m_chart->GetAxis(vtkAxis::BOTTOM), 0);
    const AxisMapping left(*m_chart->GetAxis(vtkAxis::LEFT), 1);
    const double ratio = m_widget->devicePixelRatioF();
    const double x = m_mousePlace.x() * ratio;
    const double y = (m_widget->height() - m_mousePlace.y()) * ratio - 1;
    if (!bottom.contains(x) || !left.contains(y)) {
        return false;
    }
    const vtkRectd shiftScale = m_plot->GetShiftScale();
    const auto corner = [&](double reach) {
        return vtkVector2f(
            static_cast<float>(
                (bottom.toData(x + reach) + shiftScale.GetX()) * shiftScale.GetWidth()),
            static_cast<float>(
                (left.toData(y + reach) + shiftScale.GetY()) * shiftScale.GetHeight()));
    };
    return vtkChartUtils::caseIDAtPoint(
        *m_plot, *m_plot->GetInput()->GetColumn(0), corner(-pickReach), corner(pickReach), caseID);
}

bool ScatterPlotView::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::MouseButtonPress: {
        const auto* press = static_cast<QMouseEvent*>(event);
        m_mousePlace = press->pos();
        if (press->button() == Qt::RightButton) {
            adjustSelectionForMouseClickAtPoint();
        }
        break;
    }
    case QEvent::ContextMenu:
        emitContextMenuRequested(static_cast<QContextMenuEvent*>(event)->globalPos());
        return true;
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

void ScatterPlotView::buildChart()
{
    // In this order; the other one gives the window an interactor of its own that hears nothing.
    const vtkNew<vtkGenericOpenGLRenderWindow> window;
    // Points and texts have soft edges of their own, and without a graphics card samples cost half of the frame.
    window->SetMultiSamples(0);
    m_widget->setRenderWindow(window);
    m_view->SetRenderWindow(window);
    m_view->GetScene()->AddItem(m_chart);
    m_chart->SetRenderEmpty(true);
    m_chart->setLegendsFollowSize(true);
    m_chart->GetAxis(vtkAxis::BOTTOM)->SetTitle("");
    m_chart->GetAxis(vtkAxis::LEFT)->SetTitle("");

    m_axisObserver = vtkCvCommandProxy::New([this] { axisModified(); });
    for (const int index : {vtkAxis::BOTTOM, vtkAxis::LEFT}) {
        m_chart->GetAxis(index)->AddObserver(vtkCommand::ModifiedEvent, m_axisObserver, 0.0F);
    }

    m_plot = vtkPlotPoints::SafeDownCast(m_chart->AddPlot(vtkChart::POINTS));
    m_plot->SetMarkerStyle(vtkPlotPoints::CIRCLE);
    m_plot->SetVisible(false);

    m_widget->setObjectName(QStringLiteral("XYChart"));
    m_widget->setAccessibleName(tr("XY chart"));
    m_widget->setFocusPolicy(Qt::StrongFocus);
    m_widget->setMinimumSize(160, 120);
    m_widget->installEventFilter(this);
    applyAppearance();
}

void ScatterPlotView::buildProperties()
{
    m_xSpatial =
        boost::make_shared<SpatialVariableProperty2D>(m_chart->GetAxis(vtkAxis::BOTTOM), 0);
    m_ySpatial = boost::make_shared<SpatialVariableProperty2D>(m_chart->GetAxis(vtkAxis::LEFT), 1);
    m_xSpatial->addPlot(m_plot);
    m_ySpatial->addPlot(m_plot);
    m_xVariable = boost::make_shared<corvane::UndoablePropertyProxy<WeakPtr<Variable>>>(
        "X Variable", m_xSpatial);
    m_yVariable = boost::make_shared<corvane::UndoablePropertyProxy<WeakPtr<Variable>>>(
        "Y Variable", m_ySpatial);
    m_showLegend = boost::make_shared<corvane::UndoablePropertyProxy<bool>>(
        "Show Legend", boost::make_shared<corvane::Property<bool>>(true));
    applyLegend();

    m_mouseMode = boost::make_shared<VTKChartsMouseModeProperty>(m_chart);
    m_mouseMode->setValue(Select);

    m_settings = {
        boost::make_shared<VariableSetting>(
            "x", "X axis", m_xVariable, &isNumeric, "numeric variables"),
        boost::make_shared<VariableSetting>(
            "y", "Y axis", m_yVariable, &isNumeric, "numeric variables"),
        makeSwitchSetting("legend", "Legend", m_showLegend),
        boost::make_shared<ChoiceSetting<MouseMode>>(
            SettingInterface::Kind::Choice,
            "mouse-mode",
            "Mouse",
            m_mouseMode,
            ChoiceSetting<MouseMode>::NamedValues{
                {"select", Select}, {"pan", Pan}, {"zoom", Zoom}})};
}

void ScatterPlotView::chooseFirstVariables()
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

void ScatterPlotView::takeTable()
{
    vtkTableAlgorithm& output = m_pipeline.output();
    output.Update();
    vtkTable* table = output.GetOutput();
    m_plot->SetInputData(table);

    const auto hasColumn = [this, table](const WeakPtr<Variable>& variable) {
        const std::string name = variableName(variable);
        return !name.empty()
            && vtkDataArray::SafeDownCast(table->GetColumnByName(name.c_str())) != nullptr;
    };
    const bool isDrawable = hasColumn(m_xVariable->value()) && hasColumn(m_yVariable->value());
    m_plot->SetVisible(isDrawable);
    m_chart->SetTitle(
        isDrawable ? std::string()
                   : tr("Nothing to draw: choose numeric variables for X and Y").toStdString());
    // The legend's entry.
    m_plot->SetLabel(isDrawable ? variableName(m_yVariable->value()) : std::string());
    m_synchronizer->setPlotsToSynchronize(
        isDrawable ? std::vector<vtkSmartPointer<vtkPlot>>{m_plot}
                   : std::vector<vtkSmartPointer<vtkPlot>>());
    m_synchronizer->updateChartSelections();
    markForPainting();
}

void ScatterPlotView::variableChanged()
{
    takeTable();
    m_chart->RecalculateBounds();
    markForPainting();
    emitTitleChanged();
}

void ScatterPlotView::applyLegend()
{
    m_chart->SetShowLegend(m_showLegend->value());
    markForPainting();
}

void ScatterPlotView::applyAppearance()
{
    const QPalette palette = m_widget->palette();
    const QColor& background = palette.color(QPalette::Base);
    const QColor& text = palette.color(QPalette::Text);
    const QColor grid = mix(background, text, 0.12);
    const bool isDark = background.lightness() < text.lightness();
    const auto ratio = static_cast<float>(m_widget->devicePixelRatioF());

    m_view->GetRenderer()->SetBackground(
        background.redF(), background.greenF(), background.blueF());
    for (const int index : {vtkAxis::BOTTOM, vtkAxis::LEFT}) {
        vtkAxis& axis = *m_chart->GetAxis(index);
        setColor(*axis.GetTitleProperties(), text);
        setColor(*axis.GetLabelProperties(), text);
        axis.GetTitleProperties()->SetFontSize(axisTitleSize);
        axis.GetLabelProperties()->SetFontSize(tickLabelSize);
        setColor(*axis.GetPen(), mix(background, text, 0.6));
        setColor(*axis.GetGridPen(), grid);
    }
    setColor(*m_chart->GetTitleProperties(), text);
    m_chart->GetTitleProperties()->SetFontSize(axisTitleSize);
    vtkChartLegend& legend = *m_chart->GetLegend();
    setColor(*legend.GetLabelProperties(), text);
    legend.GetLabelProperties()->SetFontSize(tickLabelSize);
    legend.GetBrush()->SetColor(
        static_cast<unsigned char>(background.red()),
        static_cast<unsigned char>(background.green()),
        static_cast<unsigned char>(background.blue()),
        220);
    setColor(*legend.GetPen(), mix(background, text, 0.4));

    const unsigned char* point = isDark ? pointColorOnDark : pointColor;
    const unsigned char* selected = isDark ? selectedColorOnDark : selectedColor;
    m_plot->SetColor(point[0], point[1], point[2], 200);
    m_plot->SetMarkerSize(pointSize * ratio);
    m_plot->GetSelectionPen()->SetColor(selected[0], selected[1], selected[2], 255);
    markForPainting();
}

void ScatterPlotView::axisModified()
{
    std::array<double, 4> ranges = {};
    m_chart->GetAxis(vtkAxis::BOTTOM)->GetRange(ranges.data());
    m_chart->GetAxis(vtkAxis::LEFT)->GetRange(ranges.data() + 2);
    if (ranges == m_axisRanges) {
        return;
    }
    m_axisRanges = ranges;
    // VTK does not paint again when a program sets a range; ranges that change while it paints are in the picture.
    if (m_widget && m_widget->renderWindow()->CheckInRenderStatus() == 0) {
        markForPainting();
    }
}

void ScatterPlotView::markForPainting()
{
    // VTK paints marked scenes from a timer, so that many marks make one picture.
    m_chart->GetScene()->SetDirty(true);
}

std::string ScatterPlotView::variableName(const WeakPtr<Variable>& variable) const
{
    const boost::shared_ptr<Variable> locked = variable.lock();
    return locked ? locked->name() : std::string();
}

} // namespace analyzer
