#include "pipelineTestSupport.h"

#include <dataviews/platform/pipeline/TagFilter.h>
#include <dataviews/platform/property/ExceptionBase.h>

#include <gtest/gtest.h>

using namespace pipelineTest;

namespace {

using Rows = std::vector<std::size_t>;

TEST(TagFilterTest, FollowsTheTagAsLongAsItIsThere)
{
    Project project;
    project.setCaseCount(4);
    project.addTagGroup("Quality");
    project.addTag("Quality", "good");
    project.tagCases("good", bitmap(4, {0, 2}), true);
    const boost::shared_ptr<AuxFile> file = project.addAuxFile(1, "/picture.png");
    project.tagAuxFile(*file, "good", true);
    const TagFilter filter("good");
    const TagFilter inverted("good", true);

    EXPECT_EQ(passing(filter, project), (Rows{0, 2}));
    EXPECT_EQ(passing(inverted, project), (Rows{1, 3}));

    project.tagCases("good", bitmap(4, {0}), false);
    EXPECT_EQ(passing(filter, project), (Rows{2}));

    project.removeTag("good");
    EXPECT_EQ(passing(filter, project), (Rows{0, 1, 2, 3}));
    EXPECT_EQ(passing(inverted, project), (Rows{0, 1, 2, 3}));
}

TEST(TagFilterTest, NeedsAName)
{
    EXPECT_THROW(TagFilter(""), ExceptionBase);
}

} // namespace
