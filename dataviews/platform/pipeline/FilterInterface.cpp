#include <dataviews/platform/pipeline/FilterInterface.h>

FilterInterface::FilterInterface()
    : signalFilterChanged([this] { signalFilterChangedConnected(); })
{}

FilterInterface::~FilterInterface() = default;

void FilterInterface::emitFilterChanged() const
{
    signalFilterChanged();
}

void FilterInterface::signalFilterChangedConnected() const {}
