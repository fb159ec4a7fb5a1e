#include "columns.h"

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/data/Record.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <type_traits>

namespace {

using testing::ElementsAre;

static_assert(
    std::is_trivially_copyable_v<Record> && sizeof(Record) <= 2 * sizeof(void*),
    "A record is a small value.");

TEST(RecordTest, GivesWhatItsCaseHas)
{
    Project project;
    project.setCaseIDs(integerColumn("ids", {10, 20}));
    const auto drag = project.addVariable(
        realColumn("Drag", {0.5, std::numeric_limits<double>::quiet_NaN()}), Variable::Output);
    const auto name = project.addVariable(textColumn("Name", {"a", ""}), Variable::Identifier);
    const auto file = project.addAuxFile(1, "/study/1.png");
    const auto secondFile = project.addAuxFile(1, "/study/0.png");
    project.addTagGroup("Marks");
    project.addTag("Marks", "good");
    project.addTag("Marks", "best");
    project.tagCases("good", RowBitmap(2, true), true);
    RowBitmap rows(2);
    rows.set(1);
    project.tagCases("best", rows, true);

    const Record first = *project.record(10);
    const Record second = *project.record(20);

    EXPECT_EQ(first.row(), 0U);
    EXPECT_EQ(second.caseID(), 20U);
    EXPECT_EQ(first.value(drag), Variant(0.5));
    EXPECT_TRUE(second.value(drag).isEmpty());
    EXPECT_EQ(first.value(*name.lock()), Variant("a"));
    EXPECT_TRUE(second.value(name).isEmpty()) << "An empty text is a missing one.";
    EXPECT_TRUE(first.value(WeakPtr<Variable>()).isEmpty());
    EXPECT_EQ(second.value(project.caseIDVariable()), Variant(20));
    EXPECT_THAT(first.auxFiles(), ElementsAre());
    EXPECT_THAT(
        second.auxFiles(), ElementsAre(WeakPtr<AuxFile>(file), WeakPtr<AuxFile>(secondFile)));
    EXPECT_THAT(first.tags(), ElementsAre("good"));
    EXPECT_THAT(second.tags(), ElementsAre("best", "good"));
}

} // namespace
