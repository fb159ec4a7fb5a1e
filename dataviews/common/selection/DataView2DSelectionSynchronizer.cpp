#include <dataviews/common/selection/CaseIDColumn.h>
#include <dataviews/common/selection/CaseIDIndex.h>
#include <dataviews/common/selection/DataView2DSelectionSynchronizer.h>
#include <dataviews/common/selection/PlotSelectionModel.h>
#include <dataviews/common/views/CvWaitCursor.h>

#include <dataviews/platform/vtk/vtkCvCommandProxy.h>

#include <vtkChart.h>
#include <vtkCommand.h>
#include <vtkIdTypeArray.h>
#include <vtkPlot.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkTable.h>

#include <boost/make_shared.hpp>

#include <algorithm>
#include <utility>

DataView2DSelectionSynchronizer::DataView2DSelectionSynchronizer(
    vtkSmartPointer<vtkChart> chart,
    vtkSmartPointer<vtkRenderWindowInteractor> interactor,
    boost::shared_ptr<PlotSelectionModel> selectionModel)
    : signalSelectionsUpdated([this] { signalSelectionsUpdatedConnected(); })
    , m_chart(std::move(chart))
    , m_interactor(std::move(interactor))
    , m_selectionModel(std::move(selectionModel))
{
    m_connections.add(m_selectionModel->signalSelectionChanged.connect(
        [this](const CaseSelection& selection) { masterSelectionChanged(selection); }));
    m_observer = vtkCvCommandProxy::New([this] { chartSelectionChanged(); });
    observeChart();
    updateChartSelections();
}

DataView2DSelectionSynchronizer::~DataView2DSelectionSynchronizer()
{
    m_chart->RemoveObserver(m_observer);
}

void DataView2DSelectionSynchronizer::suspend()
{
    m_connections.block();
    m_chart->RemoveObserver(m_observer);
}

void DataView2DSelectionSynchronizer::resume()
{
    m_connections.unblock();
    observeChart();
}

void DataView2DSelectionSynchronizer::setSeen(bool isSeen)
{
    m_isSeen = isSeen;
    if (m_isSeen && m_hasPutOff) {
        catchUp();
        signalSelectionsUpdated();
    }
}

void DataView2DSelectionSynchronizer::catchUp()
{
    if (m_hasPutOff) {
        updateChartSelections();
    }
}

void DataView2DSelectionSynchronizer::setPlotsToSynchronize(
    const std::vector<vtkSmartPointer<vtkPlot>>& plots)
{
    m_plotsToSynchronize = plots;
}

void DataView2DSelectionSynchronizer::updateChartSelections()
{
    setNewSelections(m_selectionModel->cases());
}

void DataView2DSelectionSynchronizer::signalSelectionsUpdatedConnected() const {}

void DataView2DSelectionSynchronizer::chartSelectionChanged()
{
    const boost::shared_ptr<const CaseSet> picked = pickedCases();
    m_chartIsUpToDate = false;
    if (m_interactor->GetControlKey() == 0 || picked->size() == 1
        || !m_selectionModel->cases()->includes(*picked)) {
        m_selectionModel->takeCases(picked);
    }
    // Nothing was heard of the selection: nothing new was picked, or what was selected already. The chart shows the
    // points that were hit and gets back the whole selection, other plots' points of the same cases included.
    if (!m_chartIsUpToDate) {
        setNewSelections(m_selectionModel->cases());
    }
}

void DataView2DSelectionSynchronizer::masterSelectionChanged(const CaseSelection& selection)
{
    if (!m_isSeen) {
        m_hasPutOff = true;
        return;
    }
    const CvWaitCursor waitCursor;
    setNewSelections(selection.cases());
    signalSelectionsUpdated();
}

void DataView2DSelectionSynchronizer::setNewSelections(
    const boost::shared_ptr<const CaseSet>& cases)
{
    m_chartIsUpToDate = true;
    m_hasPutOff = false;
    const vtkIdType plotCount = m_chart->GetNumberOfPlots();
    for (vtkIdType index = 0; index < plotCount; ++index) {
        const vtkSmartPointer<vtkPlot> plot = m_chart->GetPlot(index);
        vtkSmartPointer<vtkIdTypeArray> rows;
        if (plotShouldBeSynchronized(plot)) {
            rows = CaseIDIndex::of(*getRunIdArray(*plot->GetInput()))->rowsOf(cases);
        } else {
            rows = vtkSmartPointer<vtkIdTypeArray>::New();
            rows->SetNumberOfComponents(1);
        }
        // An array for each plot: VTK edits the array that it was given when it looks for points.
        plot->SetSelection(rows);
    }
}

bool DataView2DSelectionSynchronizer::plotShouldBeSynchronized(vtkSmartPointer<vtkPlot> plot) const
{
    return std::find(m_plotsToSynchronize.begin(), m_plotsToSynchronize.end(), plot)
        != m_plotsToSynchronize.end();
}

vtkAbstractArray* DataView2DSelectionSynchronizer::getRunIdArray(vtkTable& table) const
{
    return table.GetColumn(0);
}

boost::shared_ptr<const CaseSet> DataView2DSelectionSynchronizer::pickedCases() const
{
    std::vector<CaseIDMembership::Key> keys;
    const vtkIdType plotCount = m_chart->GetNumberOfPlots();
    for (vtkIdType index = 0; index < plotCount; ++index) {
        const vtkSmartPointer<vtkPlot> plot = m_chart->GetPlot(index);
        vtkIdTypeArray* rows = plotShouldBeSynchronized(plot) ? plot->GetSelection() : nullptr;
        if (rows != nullptr && rows->GetNumberOfTuples() > 0) {
            CaseIDColumn(*getRunIdArray(*plot->GetInput())).appendKeys(*rows, keys);
        }
    }
    return boost::make_shared<const CaseSet>(CaseIDColumn::toCases(std::move(keys)));
}

void DataView2DSelectionSynchronizer::observeChart()
{
    m_chart->AddObserver(vtkCommand::SelectionChangedEvent, m_observer, 0.0F);
}
