#include <analyzer/views/CaseTableView.h>
#include <analyzer/views/ScatterPlotView.h>
#include <analyzer/views/viewKinds.h>

#include <QtGlobal>

#include <boost/make_shared.hpp>

namespace analyzer {

std::vector<std::string> viewKinds()
{
    return {"scatter", "table"};
}

std::string viewKindHelp(const std::string& kind)
{
    if (kind == "scatter") {
        return "x, y (numeric variables), legend (on, off), mouse-mode (select, pan, zoom)";
    }
    return "no properties";
}

boost::shared_ptr<AnalyzerViewInterface> makeView(
    const std::string& kind,
    const DataPipelineManagerInterface& pipeline,
    const boost::shared_ptr<SelectionModelInterface>& selectionModel)
{
    if (kind == "scatter") {
        return boost::make_shared<ScatterPlotView>(pipeline, selectionModel);
    }
    Q_ASSERT_X(kind == "table", "makeView", "there is no such kind of view");
    return boost::make_shared<CaseTableView>(pipeline, selectionModel);
}

} // namespace analyzer
