#include <dataviews/common/selection/PlotSelectionModel.h>

#include <dataviews/platform/signals/SignalConnectionCollection.h>

#include <vtkRenderWindowInteractor.h>

#include <utility>

PlotSelectionModel::PlotSelectionModel(
    vtkSmartPointer<vtkRenderWindowInteractor> interactor,
    boost::shared_ptr<SelectionModelInterface> master)
    : m_interactor(std::move(interactor))
    , m_master(std::move(master))
    , m_connections(std::make_unique<SignalConnectionCollection>())
{
    m_connections->add(m_master->signalSelectionChanged.connect(
        [this](const std::set<unsigned long long>& selection) {
            masterSelectionModelChanged(selection);
        }));
}

std::set<unsigned long long> PlotSelectionModel::getSelections() const
{
    return m_master->getSelections();
}

void PlotSelectionModel::setSelection(const std::set<unsigned long long>& cases)
{
    if (m_interactor->GetControlKey() == 0) {
        m_master->setSelection(cases);
        return;
    }
    std::set<unsigned long long> selection = m_master->getSelections();
    if (cases.size() == 1) {
        const unsigned long long picked = *cases.begin();
        if (selection.erase(picked) == 0) {
            selection.insert(picked);
        }
    } else {
        auto place = selection.begin();
        for (const unsigned long long picked : cases) {
            // Both are sorted, so that the place behind the last one is a good guess for a run of new cases.
            place = selection.insert(place, picked);
            ++place;
        }
    }
    m_master->takeSelection(std::move(selection));
}

PlotSelectionModel::~PlotSelectionModel() = default;

void PlotSelectionModel::takeSelection(std::set<unsigned long long>&& cases)
{
    if (m_interactor->GetControlKey() == 0) {
        m_master->takeSelection(std::move(cases));
    } else {
        setSelection(cases);
    }
}

void PlotSelectionModel::masterSelectionModelChanged(const std::set<unsigned long long>& selection)
{
    emitSelectionChanged(selection);
}
