#pragma once

#include <dataviews/common/views/ViewsExport.h>

#include <boost/shared_ptr.hpp>

// The interfaces of the eight kinds of views; applications declare them.
class ImageDiffViewInterface;
class ImageMatrixViewInterface;
class LinePlotInterface;
class ScatterPlot2DInterface;
class ScatterPlot3DInterface;
class SelectedCasesViewInterface;
class SelectedImageViewInterface;
class TableViewInterface;

/// Does something with a view that depends on its kind, without asking for its type.
class DATAVIEWS_VIEWS_EXPORT DataViewVisitorInterface
{
public:
    DataViewVisitorInterface() = default;
    DataViewVisitorInterface(const DataViewVisitorInterface&) = default;
    DataViewVisitorInterface& operator=(const DataViewVisitorInterface&) = default;

    virtual void visit(boost::shared_ptr<ImageDiffViewInterface> view) = 0;
    virtual void visit(boost::shared_ptr<ImageMatrixViewInterface> view) = 0;
    virtual void visit(boost::shared_ptr<LinePlotInterface> view) = 0;
    virtual void visit(boost::shared_ptr<ScatterPlot2DInterface> view) = 0;
    virtual void visit(boost::shared_ptr<ScatterPlot3DInterface> view) = 0;
    virtual void visit(boost::shared_ptr<SelectedCasesViewInterface> view) = 0;
    virtual void visit(boost::shared_ptr<SelectedImageViewInterface> view) = 0;
    virtual void visit(boost::shared_ptr<TableViewInterface> view) = 0;

    virtual ~DataViewVisitorInterface();
};
