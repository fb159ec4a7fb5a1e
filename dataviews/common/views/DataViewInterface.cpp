#include <dataviews/common/views/DataViewInterface.h>

DataViewInterface::DataViewInterface() = default;

DataViewInterface::DataViewInterface(const DataViewInterface& /*other*/)
    : SuspendableInterface()
{}

DataViewInterface& DataViewInterface::operator=(
    const DataViewInterface& /*other*/) // NOLINT(cert-oop54-cpp)
{
    return *this;
}

DataViewInterface::~DataViewInterface() = default;
