#include <analyzer/views/CaseTableView.h>
#include <analyzer/views/ImageMatrixView.h>
#include <analyzer/views/ScatterPlotView.h>
#include <analyzer/views/SelectedImageView.h>
#include <analyzer/views/ViewServices.h>
#include <analyzer/views/viewKinds.h>

#include <dataviews/common/images/AsyncImageCache.h>
#include <dataviews/common/images/AsyncImageLoader.h>

#include <QtGlobal>

#include <boost/make_shared.hpp>

namespace analyzer {

std::vector<std::string> viewKinds()
{
    return {"scatter", "table", "images", "selected-image"};
}

std::string viewKindHelp(const std::string& kind)
{
    if (kind == "scatter") {
        return "x, y (numeric variables), legend (on, off), mouse-mode (select, pan, zoom)";
    }
    if (kind == "images") {
        return "row, column, page (variables, or (all)), rows-by, columns-by (variable, tag), "
               "pages-by (none, variable, "
               "tag), page-value, labels (on, off), label-variables, tag-groups, tags (lists: "
               "a,b,c), zoom (0 to 100)";
    }
    if (kind == "selected-image") {
        return "fit (on, off)";
    }
    return "no properties";
}

boost::shared_ptr<AnalyzerViewInterface> makeView(
    const std::string& kind, const ViewServices& services)
{
    if (kind == "scatter") {
        return boost::make_shared<ScatterPlotView>(services.pipeline, services.selection);
    }
    if (kind == "images") {
        return boost::make_shared<ImageMatrixView>(
            services.pipeline, services.selection, services.scaledImages->imageLoader());
    }
    if (kind == "selected-image") {
        return boost::make_shared<SelectedImageView>(
            services.pipeline, services.selection, services.images);
    }
    Q_ASSERT_X(kind == "table", "makeView", "there is no such kind of view");
    return boost::make_shared<CaseTableView>(services.pipeline, services.selection);
}

} // namespace analyzer
