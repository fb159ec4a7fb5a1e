#include <dataviews/common/views/DataViewVisitorAbstract.h>

DataViewVisitorAbstract::DataViewVisitorAbstract(AssertStatus status)
    : m_assertStatus(status)
{}

DataViewVisitorAbstract::DataViewVisitorAbstract(const DataViewVisitorAbstract& other) = default;

DataViewVisitorAbstract::~DataViewVisitorAbstract() = default;

// The views are taken by value, as the interface asks for, and released untouched.
// NOLINTBEGIN(performance-unnecessary-value-param)

void DataViewVisitorAbstract::visit(boost::shared_ptr<ImageDiffViewInterface> /*view*/)
{
    visitAnyViewType();
}

void DataViewVisitorAbstract::visit(boost::shared_ptr<ImageMatrixViewInterface> /*view*/)
{
    visitAnyViewType();
}

void DataViewVisitorAbstract::visit(boost::shared_ptr<LinePlotInterface> /*view*/)
{
    visitAnyViewType();
}

void DataViewVisitorAbstract::visit(boost::shared_ptr<ScatterPlot2DInterface> /*view*/)
{
    visitAnyViewType();
}

void DataViewVisitorAbstract::visit(boost::shared_ptr<ScatterPlot3DInterface> /*view*/)
{
    visitAnyViewType();
}

void DataViewVisitorAbstract::visit(boost::shared_ptr<SelectedCasesViewInterface> /*view*/)
{
    visitAnyViewType();
}

void DataViewVisitorAbstract::visit(boost::shared_ptr<SelectedImageViewInterface> /*view*/)
{
    visitAnyViewType();
}

void DataViewVisitorAbstract::visit(boost::shared_ptr<TableViewInterface> /*view*/)
{
    visitAnyViewType();
}

// NOLINTEND(performance-unnecessary-value-param)

void DataViewVisitorAbstract::visitAnyViewType() {}
