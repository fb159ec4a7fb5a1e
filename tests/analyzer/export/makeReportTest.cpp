#include <analyzer/export/exportPicture.h>
#include <analyzer/export/makeReport.h>
#include <analyzer/filters/FilterList.h>
#include <analyzer/views/CaseTableView.h>
#include <analyzer/views/ScatterPlotView.h>
#include <analyzer/views/ViewServices.h>

#include <dataviews/platform/pipeline/DataPipelineManager.h>
#include <dataviews/platform/selection/SelectionModel.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <QImage>

#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include <tests/support/SmallStudy.h>

namespace analyzer {

namespace {

class MakeReportTest : public testing::Test
{
protected:
    void TearDown() override { UndoStack::history().clear(); }

    boost::shared_ptr<SelectionModel> m_master = boost::make_shared<SelectionModel>();
};

} // namespace

TEST_F(MakeReportTest, SaysWhatIsOpenAndSelected)
{
    constexpr double missing = std::numeric_limits<double>::quiet_NaN();
    SmallStudy study(4);
    study.add("Speed", {1, 2, 3, 4}, Variable::Input)
        .add("Drag", {1.0 / 3.0, missing, 5, 6})
        .add("Name", std::vector<std::string>{"a", "", "c", "d"})
        .open();
    Project& project = Project::project();
    project.addTagGroup("Quality");
    project.addTag("Quality", "good");
    RowBitmap rows(4);
    rows.set(1);
    rows.set(2);
    project.tagCases("good", rows, true);
    DataPipelineManager pipeline(project);
    FilterList filters(pipeline);
    filters.addRangeFilter("Speed", {1, 3});
    const ViewServices services{pipeline, m_master, {}, {}, boost::make_shared<HoveredCase>()};
    const auto chart = boost::make_shared<ScatterPlotView>(services);
    const auto table = boost::make_shared<CaseTableView>(pipeline, m_master);
    chart->widget().resize(300, 200);

    const Report report =
        makeReport(project, filters, {chart.get(), table.get()}, CaseSet({1, 2, 99}), "today");

    EXPECT_EQ(report.date, "today");
    EXPECT_EQ(report.caseCount, 4U);
    EXPECT_EQ(report.shownCount, 3U);
    EXPECT_EQ(report.selectedCount, 2U) << "99 is no case";
    EXPECT_EQ(report.filters, (std::vector<std::string>{"Speed between 1 and 3"}));
    ASSERT_EQ(report.tags.size(), 1U);
    EXPECT_EQ(report.tags[0].group, "Quality");
    EXPECT_EQ(report.tags[0].name, "good");
    EXPECT_EQ(report.tags[0].caseCount, 2U);
    ASSERT_EQ(report.columns.size(), 4U);
    EXPECT_EQ(report.columns[0].name, "Case ID");
    EXPECT_TRUE(report.columns[2].isNumeric);
    EXPECT_FALSE(report.columns[3].isNumeric);
    EXPECT_EQ(
        report.rows,
        (std::vector<Report::Row>{
            {"1", "1", "0.333333", "a"}, {"2", "2", std::nullopt, std::nullopt}}));
    EXPECT_EQ(report.leftOutRowCount, 0U);
    ASSERT_EQ(report.pictures.size(), 2U);
    EXPECT_EQ(report.pictures[0].title, "Drag over Speed");
    EXPECT_EQ(report.pictures[0].note, "2 not drawn: 1 without Drag, 1 filtered");
    EXPECT_EQ(report.pictures[0].size, QSize(300, 200));
    EXPECT_EQ(QImage::fromData(report.pictures[0].png).size(), QSize(600, 400));
    EXPECT_FALSE(QImage::fromData(report.pictures[1].png).isNull());
}

TEST_F(MakeReportTest, TellsOfItsProgressAndEndsWhenItIsTold)
{
    constexpr std::size_t cases = 20000;
    SmallStudy study(cases);
    std::vector<double> x;
    for (std::size_t i = 0; i < cases; ++i) {
        x.push_back(static_cast<double>(i * i % 7919));
    }
    study.add("Speed", x).add("Drag", std::vector<double>(x.rbegin(), x.rend())).open();
    DataPipelineManager pipeline(Project::project());
    const FilterList filters(pipeline);
    const ViewServices services{
        pipeline, boost::make_shared<SelectionModel>(), {}, {}, boost::make_shared<HoveredCase>()};
    ScatterPlotView first(services);
    ScatterPlotView second(services);
    const std::vector<AnalyzerViewInterface*> views{&first, &second};
    for (AnalyzerViewInterface* view : views) {
        view->widget().resize(900, 700);
    }
    std::vector<double> shares;
    const auto reportEndingAfter = [&](double last) {
        shares.clear();
        return makeReport(Project::project(), filters, views, CaseSet(), "", [&](double share) {
            shares.push_back(share);
            if (share > last) {
                throw std::runtime_error("enough");
            }
        });
    };

    const Report report = reportEndingAfter(1.0);

    EXPECT_EQ(
        report.pictures[1].png,
        makeReport(Project::project(), filters, views, CaseSet(), "").pictures[1].png);
    EXPECT_TRUE(std::is_sorted(shares.begin(), shares.end()));
    EXPECT_EQ(shares.front(), 0.0);
    EXPECT_NE(std::find(shares.begin(), shares.end(), 0.5), shares.end());
    EXPECT_LT(shares.back(), 1.0);
    EXPECT_THROW(static_cast<void>(reportEndingAfter(0.4)), std::runtime_error);
}

TEST_F(MakeReportTest, ListsNoMoreThanAThousandCases)
{
    SmallStudy study(mostReportRows + 2);
    study.add("x", std::vector<double>(mostReportRows + 2, 1.0)).open();
    DataPipelineManager pipeline(Project::project());
    const FilterList filters(pipeline);
    std::set<unsigned long long> all;
    for (unsigned long long caseID = 1; caseID <= mostReportRows + 2; ++caseID) {
        all.insert(all.end(), caseID);
    }

    const Report report = makeReport(Project::project(), filters, {}, CaseSet(all), "");

    EXPECT_EQ(report.rows.size(), mostReportRows);
    EXPECT_EQ(report.rows.back().front(), std::to_string(mostReportRows));
    EXPECT_EQ(report.leftOutRowCount, 2U);
    EXPECT_EQ(report.selectedCount, mostReportRows + 2);
}

} // namespace analyzer
