#include <dataviews/platform/selection/SelectionModelInterface.h>

SelectionModelInterface::SelectionModelInterface()
    : signalSelectionChanged([this] { signalSelectionChangedConnected(); })
{}

SelectionModelInterface::~SelectionModelInterface() = default;

void SelectionModelInterface::takeSelection(std::set<unsigned long long>&& cases)
{
    setSelection(cases);
}

void SelectionModelInterface::emitSelectionChanged(
    const std::set<unsigned long long>& selection) const
{
    signalSelectionChanged(selection);
}

void SelectionModelInterface::signalSelectionChangedConnected() const {}
