// Two charts of one table: what is picked in one is picked in the other.

#include <dataviews/common/charts/ChartXY.h>
#include <dataviews/common/charts/VTKChartsMouseModeProperty.h>
#include <dataviews/common/selection/DataView2DSelectionSynchronizer.h>
#include <dataviews/common/selection/PlotSelectionModel.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/selection/SelectionModel.h>

#include <QApplication>
#include <QHBoxLayout>
#include <QSurfaceFormat>
#include <QVTKOpenGLNativeWidget.h>
#include <QWidget>

#include <vtkContextScene.h>
#include <vtkContextView.h>
#include <vtkDoubleArray.h>
#include <vtkGenericOpenGLRenderWindow.h>
#include <vtkNew.h>
#include <vtkPlot.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkTable.h>

#include <boost/make_shared.hpp>

#include <cmath>

namespace {

/// A chart in a widget, linked with the selection that all charts share.
class LinkedChart
{
public:
    LinkedChart(const char* y, const boost::shared_ptr<SelectionModel>& selection)
    {
        vtkNew<vtkGenericOpenGLRenderWindow> window;
        widget->setRenderWindow(window);
        m_view->SetRenderWindow(window);
        m_view->GetScene()->AddItem(m_chart);
        vtkPlot* plot = m_chart->AddPlot(vtkChart::POINTS);
        plot->SetInputData(&Project::project().table(), "Angle", y);
        m_mouse = boost::make_shared<VTKChartsMouseModeProperty>(m_chart.Get());
        m_mouse->setValue(DataViewInterface::Select);
        m_link = std::make_unique<DataView2DSelectionSynchronizer>(
            m_chart.Get(),
            m_view->GetInteractor(),
            boost::make_shared<PlotSelectionModel>(m_view->GetInteractor(), selection));
        m_link->setPlotsToSynchronize({plot});
        m_link->signalSelectionsUpdated.connect([this] { m_chart->GetScene()->SetDirty(true); });
    }

    QVTKOpenGLNativeWidget* widget = new QVTKOpenGLNativeWidget; // a layout takes it over

private:
    vtkNew<vtkContextView> m_view;
    vtkNew<ChartXY> m_chart;
    boost::shared_ptr<VTKChartsMouseModeProperty> m_mouse;
    std::unique_ptr<DataView2DSelectionSynchronizer> m_link;
};

void fillProject(Project& project)
{
    constexpr int cases = 500;
    project.setCaseCount(cases);
    for (const char* name : {"Angle", "Sine", "Cosine"}) {
        vtkNew<vtkDoubleArray> column;
        column->SetName(name);
        for (int i = 0; i < cases; ++i) {
            const double angle = i * 0.05;
            column->InsertNextValue(
                *name == 'A' ? angle : (*name == 'S' ? std::sin(angle) : std::cos(angle)));
        }
        project.addVariable(column.Get(), *name == 'A' ? Variable::Input : Variable::Output);
    }
}

} // namespace

int main(int argc, char** argv)
{
    QSurfaceFormat::setDefaultFormat(QVTKOpenGLNativeWidget::defaultFormat());
    const QApplication application(argc, argv);
    fillProject(Project::project());

    const auto selection = boost::make_shared<SelectionModel>();
    QWidget window;
    const LinkedChart left("Sine", selection);
    const LinkedChart right("Cosine", selection);
    auto* layout = new QHBoxLayout(&window);
    layout->addWidget(left.widget);
    layout->addWidget(right.widget);
    window.resize(1000, 500);
    window.show();
    return QApplication::exec();
}
