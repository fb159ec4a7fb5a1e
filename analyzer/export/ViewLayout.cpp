#include <analyzer/export/ViewLayout.h>
#include <analyzer/views/AnalyzerViewInterface.h>

#include <dataviews/platform/property/ExceptionBase.h>

#include <QDeadlineTimer>
#include <QEventLoop>
#include <QImage>
#include <QPainter>
#include <QScrollBar>
#include <QSplitter>
#include <QTableView>
#include <QTimer>
#include <QVTKOpenGLNativeWidget.h>

#include <vtkChartLegend.h>
#include <vtkContextActor.h>
#include <vtkContextScene.h>
#include <vtkPropCollection.h>
#include <vtkRenderWindow.h>
#include <vtkRenderer.h>
#include <vtkRendererCollection.h>

#include <chrono>
#include <cmath>

namespace analyzer {

namespace {

constexpr std::chrono::seconds longestWait(60);
constexpr std::chrono::milliseconds pollInterval(10);

std::vector<vtkSmartPointer<ChartXY>> chartsOf(QVTKOpenGLNativeWidget& widget)
{
    std::vector<vtkSmartPointer<ChartXY>> charts;
    vtkRenderer* renderer = widget.renderWindow()->GetRenderers()->GetFirstRenderer();
    if (renderer == nullptr) {
        return charts;
    }
    vtkCollectionSimpleIterator place = nullptr;
    vtkPropCollection& props = *renderer->GetViewProps();
    props.InitTraversal(place);
    while (vtkProp* prop = props.GetNextProp(place)) {
        auto* actor = vtkContextActor::SafeDownCast(prop);
        for (unsigned i = 0; actor != nullptr && i < actor->GetScene()->GetNumberOfItems(); ++i) {
            if (auto* chart = ChartXY::SafeDownCast(actor->GetScene()->GetItem(i))) {
                charts.emplace_back(chart);
            }
        }
    }
    return charts;
}

} // namespace

ViewLayout::ViewLayout(AnalyzerViewInterface& view, const QSizeF& size)
    : m_view(view)
    , m_widget(view.widget())
{
    auto* chart = qobject_cast<QVTKOpenGLNativeWidget*>(&m_widget);
    if (chart != nullptr) {
        prepareChart(*chart);
    }
    auto* table = qobject_cast<QTableView*>(&m_widget);
    const bool laysOutAtOnce = chart != nullptr || table != nullptr;
    const QSize wanted(
        static_cast<int>(std::lround(size.width())), static_cast<int>(std::lround(size.height())));
    const bool isOtherSize = (laysOutAtOnce || !m_widget.isVisible()) && wanted != m_widget.size();
    if (isOtherSize || table != nullptr) {
        remember();
    }
    if (table != nullptr) {
        m_horizontalPolicy = table->horizontalScrollBarPolicy();
        m_verticalPolicy = table->verticalScrollBarPolicy();
        table->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        table->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    }
    if (isOtherSize) {
        m_widget.resize(wanted);
    }
    if (!laysOutAtOnce) {
        waitForImages();
    }
}

ViewLayout::~ViewLayout()
{
    if (m_isChanged) {
        m_widget.setGeometry(m_geometry);
        if (auto* table = qobject_cast<QTableView*>(&m_widget)) {
            table->setHorizontalScrollBarPolicy(m_horizontalPolicy);
            table->setVerticalScrollBarPolicy(m_verticalPolicy);
        }
        for (const auto& [splitter, state] : m_splitters) {
            if (splitter) {
                splitter->restoreState(state);
            }
        }
        for (const auto& [bar, value] : m_scrolling) {
            if (bar) {
                bar->setValue(value);
            }
        }
        for (const Legend& legend : m_legends) {
            legend.chart->placeLegend(*legend.legend, legend.place);
        }
        m_widget.update();
    }
    if (m_widget.isVisible() && qobject_cast<QVTKOpenGLNativeWidget*>(&m_widget) != nullptr) {
        m_view.render(); // its texts and legends are again those of the screen then
    }
}

void ViewLayout::prepareChart(QVTKOpenGLNativeWidget& chart)
{
    // Axes that were not drawn since their variable was chosen are fitted by drawing.
    if (chart.isVisible()) {
        m_view.render();
        return;
    }
    chart.window()->winId(); // a window without this cannot be drawn in
    (void)chart.grabFramebuffer();
}

void ViewLayout::remember()
{
    for (QScrollBar* bar : m_widget.findChildren<QScrollBar*>()) {
        m_scrolling.emplace_back(bar, bar->value());
    }
    for (QSplitter* splitter : m_widget.findChildren<QSplitter*>()) {
        m_splitters.emplace_back(splitter, splitter->saveState());
    }
    if (auto* widget = qobject_cast<QVTKOpenGLNativeWidget*>(&m_widget)) {
        for (const vtkSmartPointer<ChartXY>& chart : chartsOf(*widget)) {
            std::vector<vtkChartLegend*> legends{chart->GetLegend()};
            for (unsigned i = 0; i < chart->GetNumberOfItems(); ++i) {
                legends.push_back(vtkChartLegend::SafeDownCast(chart->GetItem(i)));
            }
            for (vtkChartLegend* legend : legends) {
                const auto place =
                    legend == nullptr ? std::nullopt : chart->ownLegendPlace(*legend);
                if (place) {
                    m_legends.push_back({chart, legend, *place});
                }
            }
        }
    }
    m_geometry = m_widget.geometry();
    m_isChanged = true;
}

void ViewLayout::waitForImages()
{
    // What a view needs it asks for when it is painted.
    QImage nowhere(m_widget.size(), QImage::Format_RGB32);
    QPainter painter(&nowhere);
    m_widget.render(&painter);
    painter.end();

    QEventLoop loop;
    QTimer poll;
    const QDeadlineTimer deadline(longestWait);
    const auto isDone = [&] { return !m_view.isLoading() || deadline.hasExpired(); };
    QObject::connect(&poll, &QTimer::timeout, &loop, [&] {
        if (isDone()) {
            loop.quit();
        }
    });
    if (!isDone()) {
        poll.start(pollInterval);
        loop.exec(QEventLoop::ExcludeUserInputEvents);
    }
    if (m_view.isLoading()) {
        throw ExceptionBase("The images of the view are still being read; try again later.");
    }
}

} // namespace analyzer
