#include <dataviews/platform/data/AuxFile.h>
#include <dataviews/platform/data/Project.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;

TEST(AuxFileTest, CarriesItsOwnTagsAndThoseOfItsCase)
{
    Project project;
    project.setCaseCount(3);
    const auto file = project.addAuxFile(1, "/study/pressure.png");
    const auto sibling = project.addAuxFile(1, "/study/velocity.png");
    const auto other = project.addAuxFile(2, "/study/other.png");
    project.addTagGroup("Images");
    for (const char* tag : {"pressure", "both", "checked", "unused"}) {
        project.addTag("Images", tag);
    }
    RowBitmap rows(3);
    rows.set(1);
    project.tagCases("checked", rows, true);
    project.tagCases("both", rows, true);
    project.tagAuxFile(*file, "pressure", true);
    project.tagAuxFile(*file, "both", true);

    EXPECT_THAT(file->tags(), ElementsAre("both", "checked", "pressure"));
    EXPECT_THAT(file->ownTags(), ElementsAre("both", "pressure"));
    EXPECT_THAT(sibling->tags(), ElementsAre("both", "checked"));
    EXPECT_THAT(sibling->ownTags(), ElementsAre());
    EXPECT_THAT(other->tags(), ElementsAre());
    EXPECT_TRUE(file->hasTag("pressure"));
    EXPECT_TRUE(file->hasTag("checked"));
    EXPECT_FALSE(file->hasTag("unused"));
    EXPECT_FALSE(file->hasTag("unknown"));
    EXPECT_FALSE(file->hasTag(""));
    EXPECT_THAT(project.caseTags(1), ElementsAre("both", "checked"));

    project.tagAuxFile(*file, "both", false);
    EXPECT_TRUE(file->hasTag("both")) << "The case still carries the tag.";
    project.tagCases("both", rows, false);
    EXPECT_FALSE(file->hasTag("both"));
}

TEST(AuxFileTest, TagThatIsRemovedAndAddedAgainIsANewOne)
{
    Project project;
    project.setCaseCount(1);
    const auto file = project.addAuxFile(0, "/study/pressure.png");
    project.addTagGroup("Images");
    project.addTag("Images", "pressure");
    project.tagAuxFile(*file, "pressure", true);
    project.tagCases("pressure", RowBitmap(1, true), true);

    project.removeTag("pressure");
    EXPECT_THAT(file->tags(), ElementsAre());
    EXPECT_THAT(file->ownTags(), ElementsAre());
    project.addTag("Images", "pressure");

    EXPECT_FALSE(file->hasTag("pressure"));
    EXPECT_THAT(project.caseTags(0), ElementsAre());
}

} // namespace
