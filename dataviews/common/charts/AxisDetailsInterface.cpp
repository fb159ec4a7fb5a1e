#include <dataviews/common/charts/AxisDetailsInterface.h>

AxisDetailsInterface::AxisDetailsInterface()
    : axisDetailsChanged([this] { signalAxisDetailsChangedConnected(); })
{}

AxisDetailsInterface::~AxisDetailsInterface() = default;

void AxisDetailsInterface::signalAxisDetailsChangedConnected() const {}

void AxisDetailsInterface::emitAxisDetailsChanged() const
{
    axisDetailsChanged();
}
