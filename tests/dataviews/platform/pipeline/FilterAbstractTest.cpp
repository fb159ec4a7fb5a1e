#include "pipelineTestSupport.h"

#include <dataviews/platform/pipeline/FilterAbstract.h>
#include <dataviews/platform/pipeline/TagFilter.h>
#include <dataviews/platform/pipeline/ValueSetFilter.h>

#include <gtest/gtest.h>

using namespace pipelineTest;

namespace {

TEST(FilterAbstractTest, IsBoundToOneThing)
{
    Project project;
    project.setCaseCount(1);
    const ValueSetFilter byValue(project.caseIDVariable(), {});
    const TagFilter byTag("good");

    EXPECT_EQ(byValue.variable(), project.caseIDVariable());
    EXPECT_EQ(byValue.tag(), "");
    EXPECT_TRUE(byTag.variable().isNull());
    EXPECT_EQ(byTag.tag(), "good");
}

TEST(FilterAbstractTest, TellsOnceAndOnlyOfChanges)
{
    TagFilter filter("good");
    int changes = 0;
    filter.signalFilterChanged.connect([&changes] { ++changes; });

    filter.setEnabled(true);
    filter.setInverted(false);
    EXPECT_EQ(changes, 0);

    filter.setEnabled(false);
    EXPECT_EQ(changes, 1);
    EXPECT_FALSE(filter.isEnabled());

    filter.setInverted(true);
    EXPECT_EQ(changes, 2);
    EXPECT_TRUE(filter.isInverted());
}

} // namespace
