#include <dataviews/platform/pipeline/DataPipelineManagerInterface.h>

DataPipelineManagerInterface::DataPipelineManagerInterface()
    : signalPipelineChanged([this] { signalPipelineChangedConnected(); })
{}

DataPipelineManagerInterface::~DataPipelineManagerInterface() = default;

void DataPipelineManagerInterface::emitPipelineChanged() const
{
    signalPipelineChanged();
}

void DataPipelineManagerInterface::signalPipelineChangedConnected() const {}
