#pragma once

#include <dataviews/common/selection/SelectionExport.h>

#include <dataviews/platform/selection/SuspendableInterface.h>
#include <dataviews/platform/signals/Signal.h>
#include <dataviews/platform/signals/SignalConnectionCollection.h>

#include <vtkSmartPointer.h>

#include <boost/shared_ptr.hpp>

#include <vector>

class CaseSelection;
class CaseSet;
class PlotSelectionModel;
class SelectionModelInterface;
class vtkAbstractArray;
class vtkChart;
class vtkCvCommandProxy;
class vtkPlot;
class vtkRenderWindowInteractor;
class vtkTable;

/// Keeps the points selected in a chart and the application-wide selection of cases in step.
///
/// A selection that the user makes in the chart is written to the chart's PlotSelectionModel; a change of the selection,
/// whoever made it, is written into every plot. Each plot to be synchronised shows a record table: column 0 holds the
/// case ID of each row. The other plots of the chart show no selection. Used on the GUI thread.
class DATAVIEWS_SELECTION_EXPORT DataView2DSelectionSynchronizer : public SuspendableInterface
{
public:
    /// Is active at once. No plot takes part yet, so that the selection of every plot of \p chart is emptied.
    DataView2DSelectionSynchronizer(
        vtkSmartPointer<vtkChart> chart,
        vtkSmartPointer<vtkRenderWindowInteractor> interactor,
        boost::shared_ptr<PlotSelectionModel> selectionModel);
    DataView2DSelectionSynchronizer(const DataView2DSelectionSynchronizer&) = delete;
    DataView2DSelectionSynchronizer& operator=(const DataView2DSelectionSynchronizer&) = delete;
    ~DataView2DSelectionSynchronizer() override;

    /// Closes both directions.
    void suspend() override;

    /// Opens both directions; to be called after a suspend(). The chart still shows the selection of before, until
    /// updateChartSelections().
    void resume() override;

    /// The chart shows a new selection; it has not been drawn yet.
    Signal<void(), DataView2DSelectionSynchronizer> signalSelectionsUpdated;

    /// While nobody sees the chart, changes of the selection are not written into it. When it is seen again it catches up
    /// and signalSelectionsUpdated tells so, if there was a change. Seen from the start; suspension is apart from this.
    void setSeen(bool isSeen);

    /// Makes up for what setSeen(false) has put off, without a signal; for a picture of a chart that nobody sees.
    void catchUp();

    /// Replaces the plots that take part. The chart is not touched until updateChartSelections().
    void setPlotsToSynchronize(const std::vector<vtkSmartPointer<vtkPlot>>& plots);

    /// Writes the present selection into the chart, without a signal. To be called whenever the table of a plot has
    /// changed and before the chart is drawn: row numbers of before may lie behind the end of the new table.
    void updateChartSelections();

private:
    virtual void signalSelectionsUpdatedConnected() const;
    virtual void chartSelectionChanged();

    void masterSelectionChanged(const CaseSelection& selection);
    void setNewSelections(const boost::shared_ptr<const CaseSet>& cases);
    [[nodiscard]] bool plotShouldBeSynchronized(vtkSmartPointer<vtkPlot> plot) const;
    [[nodiscard]] vtkAbstractArray* getRunIdArray(vtkTable& table) const;
    [[nodiscard]] boost::shared_ptr<const CaseSet> pickedCases() const;
    void observeChart();

    vtkSmartPointer<vtkChart> m_chart;
    vtkSmartPointer<vtkRenderWindowInteractor> m_interactor;
    boost::shared_ptr<SelectionModelInterface> m_selectionModel;
    vtkSmartPointer<vtkCvCommandProxy> m_observer;
    SignalConnectionCollection m_connections;
    std::vector<vtkSmartPointer<vtkPlot>> m_plotsToSynchronize;
    bool m_chartIsUpToDate = true; ///< it was written since the last pick
    bool m_isSeen = true;
    bool m_hasPutOff = false; ///< a change of the selection, until the chart is seen
};
