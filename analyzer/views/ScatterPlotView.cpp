#include <analyzer/views/PointColors.h>
#include <analyzer/views/ScatterPlotView.h>

#include <dataviews/common/charts/CategoryLegend.h>
#include <dataviews/common/charts/ChartXY.h>
#include <dataviews/common/charts/RingedPlotPoints.h>
#include <dataviews/common/views/DataViewVisitorInterface.h>

#include <QHelpEvent>
#include <QToolTip>

#include <vtkNew.h>
#include <vtkTable.h>

namespace analyzer {

ScatterPlotView::ScatterPlotView(const ViewServices& services)
    : ChartViewAbstract(services, "ScatterPlot2D")
    , m_plot(vtkSmartPointer<RingedPlotPoints>::New())
{
    addPlot(*m_plot);
    m_colors = std::make_unique<PointColors>(
        *m_plot, chart(), contextView(), pipeline(), legendProperty());
    for (const boost::shared_ptr<SettingInterface>& setting : m_colors->makeSettings()) {
        addSetting(setting);
    }
    addAxisSettings();
    addPointSettings();
    m_colors->keepState(serializer());
    keepLegend("CategoryLegend", m_colors->categoryLegend());
    start({m_colors->variable()});
    connections().add(m_colors->variable()->valueChanged.connect(
        [this](const WeakPtr<Variable>&) { emitTitleChanged(); }));
    connections().add(m_colors->signalPaintingNeeded.connect([this] { markForPainting(); }));
}

ScatterPlotView::~ScatterPlotView()
{
    stop();
    m_colors.reset();
}

void ScatterPlotView::accept(DataViewVisitorInterface& visitor)
{
    visitor.visit(boost::shared_ptr<ScatterPlot2DInterface>(shared_from_this()));
}

std::string ScatterPlotView::kind() const
{
    return "scatter";
}

std::string ScatterPlotView::title() const
{
    const std::string color = variableName(m_colors->variable()->value());
    return ChartViewAbstract::title() + (color.empty() ? color : ", colored by " + color);
}

boost::shared_ptr<corvane::PropertyAbstract<WeakPtr<Variable>>> ScatterPlotView::xVariable() const
{
    return xVariableProperty();
}

boost::shared_ptr<corvane::PropertyAbstract<WeakPtr<Variable>>> ScatterPlotView::yVariable() const
{
    return yVariableProperty();
}

boost::shared_ptr<corvane::PropertyAbstract<bool>> ScatterPlotView::showLegend() const
{
    return legendProperty();
}

vtkPlotPoints& ScatterPlotView::plot() const
{
    return *m_plot;
}

QPoint ScatterPlotView::placeOfRow(long long row) const
{
    return ChartViewAbstract::placeOfRow(*m_plot, row);
}

void ScatterPlotView::showTable(vtkTable& table)
{
    const vtkNew<vtkTable> cases;
    cases->ShallowCopy(&table);
    m_colors->prepare(*cases);
    m_plot->SetInputData(cases);
    m_plot->SetVisible(true);
    m_plot->SetLabel(variableName(yVariableProperty()->value()));
    m_colors->apply();
    // The marker in a legend has the plain color.
    m_plot->SetLegendVisibility(!m_colors->isColored());
}

void ScatterPlotView::hidePlots()
{
    m_plot->SetVisible(false);
    m_plot->SetLabel(std::string());
    m_colors->apply();
}

std::vector<vtkSmartPointer<vtkPlotPoints>> ScatterPlotView::visiblePlots() const
{
    return m_plot->GetVisible() ? std::vector<vtkSmartPointer<vtkPlotPoints>>{m_plot}
                                : std::vector<vtkSmartPointer<vtkPlotPoints>>();
}

std::vector<WeakPtr<Variable>> ScatterPlotView::furtherVariables() const
{
    return {m_colors->variable()->value()};
}

void ScatterPlotView::applyOwnAppearance(const AppearanceColors& colors)
{
    const ColorBytes color = plainColor(colors);
    m_plot->SetColor(color[0], color[1], color[2], alpha());
    m_plot->SetMarkerSize(pointSizePx());
    m_plot->setDeepening(
        colors.isDark ? OverlapColors::Deepening::Brighter : OverlapColors::Deepening::Darker);
    m_plot->setSelectionColors(selectionColors(colors, !m_colors->isColored()));
    styleLegend(m_colors->categoryLegend(), colors);
    m_colors->applyAppearance({colors.text, colors.isDark, opacity(), legendMarkerPx()});
}

double ScatterPlotView::layOutRightSide()
{
    m_colors->fitBar(widget().width(), widget().height());
    return m_colors->reservedWidth();
}

bool ScatterPlotView::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::ToolTip) {
        const auto* help = static_cast<QHelpEvent*>(event);
        const QString text = m_colors->toolTip(
            (help->x() + 0.5) / widget().width(), 1.0 - (help->y() + 0.5) / widget().height());
        if (!text.isEmpty()) {
            QToolTip::showText(help->globalPos(), text, &widget());
            return true;
        }
    }
    return ChartViewAbstract::eventFilter(watched, event);
}

} // namespace analyzer
