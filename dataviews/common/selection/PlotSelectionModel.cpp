#include <dataviews/common/selection/PlotSelectionModel.h>

#include <dataviews/platform/signals/SignalConnectionCollection.h>

#include <vtkRenderWindowInteractor.h>

#include <boost/make_shared.hpp>

#include <utility>

PlotSelectionModel::PlotSelectionModel(
    vtkSmartPointer<vtkRenderWindowInteractor> interactor,
    boost::shared_ptr<SelectionModelInterface> master)
    : m_interactor(std::move(interactor))
    , m_master(std::move(master))
    , m_connections(std::make_unique<SignalConnectionCollection>())
{
    m_connections->add(m_master->signalSelectionChanged.connect(
        [this](const CaseSelection& selection) { masterSelectionModelChanged(selection); }));
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
    takeCases(boost::make_shared<const CaseSet>(cases));
}

PlotSelectionModel::~PlotSelectionModel() = default;

SelectionModelInterface::SharedCases PlotSelectionModel::cases() const
{
    return m_master->cases();
}

void PlotSelectionModel::takeCases(const SharedCases& cases)
{
    if (m_interactor->GetControlKey() == 0) {
        m_master->takeCases(cases);
        return;
    }
    const SharedCases selection = m_master->cases();
    m_master->takeCases(boost::make_shared<const CaseSet>(
        cases->size() == 1 ? CaseSet::symmetricDifference(*selection, *cases)
                           : CaseSet::united(*selection, *cases)));
}

void PlotSelectionModel::masterSelectionModelChanged(const CaseSelection& selection)
{
    emitSelectionChanged(selection);
}
