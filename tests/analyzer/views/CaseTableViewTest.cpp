#include <analyzer/views/CaseTableView.h>

#include <dataviews/platform/pipeline/DataPipelineManager.h>
#include <dataviews/platform/pipeline/RangeFilter.h>
#include <dataviews/platform/selection/SelectionModel.h>

#include <boost/make_shared.hpp>
#include <boost/signals2/connection.hpp>

#include <gtest/gtest.h>

#include <set>

#include <tests/support/SmallStudy.h>

namespace analyzer {

TEST(CaseTableViewTest, LeavesOutWhatIsFiltered)
{
    SmallStudy study(5);
    study.add("Speed", {5, 1, 4, 2, 3}).open();
    DataPipelineManager pipeline(Project::project());
    CaseTableView view(pipeline, boost::make_shared<SelectionModel>());
    int changes = 0;
    const boost::signals2::scoped_connection connection =
        view.signalLeftOutChanged.connect([&changes] { ++changes; });
    EXPECT_TRUE(view.leftOut().empty());
    EXPECT_TRUE(view.leftOutCaseIDs().empty());

    pipeline.addFilter(boost::make_shared<RangeFilter>(
        Project::project().variable("Speed"), ValueRange_s<double>{2, 4}));

    EXPECT_EQ(changes, 1);
    ASSERT_EQ(view.leftOut().size(), 1U);
    EXPECT_EQ(view.leftOut()[0].count, 2U);
    EXPECT_EQ(view.leftOut()[0].reason, "filtered");
    EXPECT_EQ(view.leftOutCaseIDs(), (std::set<unsigned long long>{1, 2}));
}

} // namespace analyzer
