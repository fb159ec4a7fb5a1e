#include <dataviews/common/selection/SelectionConverterInterface.h>

#include <dataviews/platform/selection/CaseSet.h>

#include <boost/make_shared.hpp>

SelectionConverterInterface::~SelectionConverterInterface() = default;

boost::shared_ptr<const CaseSet> SelectionConverterInterface::toCases(
    const QItemSelectionModel& selectionModel)
{
    return boost::make_shared<const CaseSet>(toCaseIDs(selectionModel));
}

std::optional<QItemSelection> SelectionConverterInterface::cellsOf(const CaseSet& /*cases*/)
{
    return std::nullopt;
}
