#include <dataviews/platform/selection/SelectionModelInterface.h>

#include <boost/make_shared.hpp>

SelectionModelInterface::SelectionModelInterface()
    : signalSelectionChanged([this] { signalSelectionChangedConnected(); })
{}

SelectionModelInterface::~SelectionModelInterface() = default;

void SelectionModelInterface::takeSelection(std::set<unsigned long long>&& cases)
{
    setSelection(cases);
}

SelectionModelInterface::SharedCases SelectionModelInterface::cases() const
{
    return boost::make_shared<const CaseSet>(getSelections());
}

void SelectionModelInterface::takeCases(const SharedCases& cases)
{
    setSelection(cases->toSet());
}

void SelectionModelInterface::emitSelectionChanged(
    const std::set<unsigned long long>& selection) const
{
    emitSelectionChanged(CaseSelection(selection));
}

void SelectionModelInterface::emitSelectionChanged(const CaseSelection& selection) const
{
    signalSelectionChanged(selection);
}

void SelectionModelInterface::signalSelectionChangedConnected() const {}
