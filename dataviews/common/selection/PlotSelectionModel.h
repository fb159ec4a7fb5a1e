#pragma once

#include <dataviews/common/selection/SelectionExport.h>

#include <dataviews/platform/selection/SelectionModelInterface.h>

#include <vtkSmartPointer.h>

#include <boost/shared_ptr.hpp>

#include <memory>

class SignalConnectionCollection;
class vtkRenderWindowInteractor;

/// The selection as one chart writes it: turns what was picked in the chart into a change of the master selection,
/// according to whether the Control key is held.
///
/// Reading gives the master's selection, and every change of the master is repeated on the own signal, whoever made
/// it. Without the key the picked cases replace the selection; with it, a single case is toggled and several are
/// added. Keeps no selection of its own. Used on the GUI thread.
class DATAVIEWS_SELECTION_EXPORT PlotSelectionModel : public virtual SelectionModelInterface
{
public:
    /// Asks \p interactor, that of the chart's window, for the key.
    PlotSelectionModel(
        vtkSmartPointer<vtkRenderWindowInteractor> interactor,
        boost::shared_ptr<SelectionModelInterface> master);
    PlotSelectionModel(const PlotSelectionModel&) = delete;
    PlotSelectionModel& operator=(const PlotSelectionModel&) = delete;

    [[nodiscard]] std::set<unsigned long long> getSelections() const override;

    /// Sets the master once, also if that is no change: the master decides.
    void setSelection(const std::set<unsigned long long>& cases) override;

    ~PlotSelectionModel() override;

    [[nodiscard]] SharedCases cases() const override;
    void takeCases(const SharedCases& cases) override;

private:
    void masterSelectionModelChanged(const CaseSelection& selection);

    // Destroyed from the last to the first: the connections before the master they lead to.
    vtkSmartPointer<vtkRenderWindowInteractor> m_interactor;
    boost::shared_ptr<SelectionModelInterface> m_master;
    std::unique_ptr<SignalConnectionCollection> m_connections;
};
