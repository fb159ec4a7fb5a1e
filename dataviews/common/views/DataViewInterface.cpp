#include <dataviews/common/views/DataViewInterface.h>

DataViewInterface::DataViewInterface() = default;

DataViewInterface::DataViewInterface(const DataViewInterface& /*other*/)
    // NOLINTNEXTLINE(readability-redundant-member-init): a copy constructor must name its base
    : SuspendableInterface()
{}

DataViewInterface& DataViewInterface::operator=(
    const DataViewInterface& /*other*/) // NOLINT(bugprone-unhandled-self-assignment)
{
    return *this;
}

DataViewInterface::~DataViewInterface() = default;
