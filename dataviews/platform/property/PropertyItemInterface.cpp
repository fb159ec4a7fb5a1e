#include <dataviews/platform/property/PropertyItemInterface.h>

namespace corvane {

PropertyItemInterface::PropertyItemInterface()
    : signalPropertyChanged([this] { signalPropertyChangedConnected(); })
{}

PropertyItemInterface::~PropertyItemInterface() = default;

bool PropertyItemInterface::hasPropertyChangedListeners() const
{
    return signalPropertyChanged.slotCount() > 0;
}

void PropertyItemInterface::emitPropertyChanged() const
{
    signalPropertyChanged();
}

void PropertyItemInterface::signalPropertyChangedConnected() const {}

} // namespace corvane
