#include <analyzer/views/CaseTableView.h>
#include <analyzer/views/ImageDiffView.h>
#include <analyzer/views/ImageMatrixView.h>
#include <analyzer/views/LinePlotView.h>
#include <analyzer/views/ScatterPlot3DView.h>
#include <analyzer/views/ScatterPlotView.h>
#include <analyzer/views/SelectedCasesView.h>
#include <analyzer/views/SelectedImageView.h>
#include <analyzer/views/ViewServices.h>
#include <analyzer/views/viewKinds.h>

#include <dataviews/common/images/AsyncImageCache.h>
#include <dataviews/common/images/AsyncImageLoader.h>

#include <QtGlobal>

#include <boost/make_shared.hpp>

namespace analyzer {

namespace {

constexpr char chartHelp[] =
    "x-min, x-max, x-grid (on, off), x-spacing, y-min, y-max, y-grid, y-spacing, "
    "point-size (1 to 40), opacity (0 to 100), filtered-out (hidden, gray), "
    "mouse-mode (select, pan, zoom), selection-shape (rectangle, lasso, x-range, y-range)";

} // namespace

std::vector<std::string> viewKinds()
{
    return {
        "scatter",
        "line",
        "scatter3d",
        "table",
        "images",
        "selected-cases",
        "selected-image",
        "image-diff"};
}

std::string viewKindHelp(const std::string& kind)
{
    if (kind == "scatter") {
        return std::string("x, y (numeric variables), color (variable, or (none)), "
                           "palette (viridis, cividis, coolwarm), legend, color-legend (on, off), "
                           "color-range (automatic, own), color-min, color-max, labels (3 to 40), ")
            + chartHelp;
    }
    if (kind == "line") {
        return std::string("x, y (numeric variables), color (the variable of the series, or "
                           "(none)), palette (viridis, cividis, coolwarm), line-width (1 to 20), "
                           "legend (on, off), ")
            + chartHelp;
    }
    if (kind == "scatter3d") {
        return "x, y, z (numeric variables), color (variable, or (none)), "
               "palette (viridis, cividis, coolwarm), legend, color-legend (on, off), "
               "color-range (automatic, own), color-min, color-max, labels (3 to 40), "
               "azimuth (-360 to 360), elevation (-90 to 90), zoom (0.1 to 100), "
               "point-size (1 to 40), opacity (0 to 100), mouse-mode (select, pan, zoom)";
    }
    if (kind == "images") {
        return "row, column, page (variables, or (all)), rows-by, columns-by (variable, tag), "
               "pages-by (none, variable, tag), page-value, labels (on, off), label-variables, "
               "tag-groups, tags (lists: a,b,c), zoom (0 to 100)";
    }
    if (kind == "selected-cases") {
        return "show (all, differing), reference (none, first, or a case ID), difference (percent, "
               "absolute, off), mark (differences, magnitude), order (study, nature)";
    }
    if (kind == "selected-image") {
        return "fit (on, off), images (at once: 1, 2, 3, 4, 6, 9)";
    }
    if (kind == "image-diff") {
        return "mode (side-by-side, blend, difference), blend (0 to 100), gain (of differences: 1 "
               "to "
               "16), tag (of the images, or (first in common)), reference (none, or a case ID), "
               "swap, "
               "fit (on, off)";
    }
    return "no properties";
}

boost::shared_ptr<AnalyzerViewInterface> makeView(
    const std::string& kind, const ViewServices& services)
{
    if (kind == "scatter") {
        return boost::make_shared<ScatterPlotView>(services);
    }
    if (kind == "line") {
        return boost::make_shared<LinePlotView>(services);
    }
    if (kind == "scatter3d") {
        return boost::make_shared<ScatterPlot3DView>(services);
    }
    if (kind == "images") {
        return boost::make_shared<ImageMatrixView>(
            services.pipeline,
            services.selection,
            services.scaledImages->imageLoader(),
            services.hovered);
    }
    if (kind == "selected-cases") {
        return boost::make_shared<SelectedCasesView>(
            services.pipeline, services.selection, services.hovered);
    }
    if (kind == "selected-image") {
        return boost::make_shared<SelectedImageView>(
            services.pipeline, services.selection, services.images, services.hovered);
    }
    if (kind == "image-diff") {
        return boost::make_shared<ImageDiffView>(
            services.pipeline, services.selection, services.images, services.hovered);
    }
    Q_ASSERT_X(kind == "table", "makeView", "there is no such kind of view");
    return boost::make_shared<CaseTableView>(
        services.pipeline, services.selection, services.hovered);
}

} // namespace analyzer
