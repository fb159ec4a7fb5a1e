#include <dataviews/common/images/ImageViewProperties.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <tests/support/SmallStudy.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Tags = std::vector<std::string>;

class ImageViewPropertiesTest : public testing::Test
{
protected:
    ImageViewPropertiesTest()
    {
        m_study.open();
        Project& project = Project::project();
        m_quality = project.addTagGroup("quality");
        project.addTag("quality", "good");
        project.addTag("quality", "bad");
        m_side = project.addTagGroup("side");
        project.addTag("side", "left");
        project.addTag("side", "right");
        history().clear();
        m_properties.allTagsToShow()->valueChanged.connect(
            [this](const Tags& tags) { m_told.push_back(tags); });
    }

    ~ImageViewPropertiesTest() override { history().clear(); }

    static QUndoStack& history() { return UndoStack::history(); }

    [[nodiscard]] Tags allTags() const { return m_properties.allTagsToShow()->value(); }

    SmallStudy m_study{2};
    WeakPtr<TagGroup> m_quality;
    WeakPtr<TagGroup> m_side;
    ImageViewProperties m_properties;
    std::vector<Tags> m_told;
};

TEST_F(ImageViewPropertiesTest, StartsWithoutLabelsAndTagsAtAQuarterOfTheZoom)
{
    EXPECT_FALSE(m_properties.showLabels()->value());
    EXPECT_THAT(m_properties.variablesInLabel()->value(), IsEmpty());
    EXPECT_THAT(m_properties.tagGroupsToShow()->value(), IsEmpty());
    EXPECT_THAT(m_properties.tagsToShow()->value(), IsEmpty());
    EXPECT_EQ(m_properties.zoom()->value(), 25U);
    EXPECT_THAT(allTags(), IsEmpty());
    EXPECT_EQ(m_properties.zoom(), m_properties.zoom());
}

TEST_F(ImageViewPropertiesTest, OnlyZoomStepsMergeInTheHistory)
{
    m_properties.zoom()->setValue(50);
    m_properties.zoom()->setValue(75);
    EXPECT_EQ(history().count(), 1);
    ImageViewProperties other;
    other.zoom()->setValue(50);
    EXPECT_EQ(history().count(), 2) << "the zoom of another view is not the same setting";
    history().undo();
    history().undo();
    EXPECT_EQ(m_properties.zoom()->value(), 25U);

    m_properties.showLabels()->setValue(true);
    m_properties.showLabels()->setValue(false);
    EXPECT_EQ(history().count(), 2);
    history().undo();
    EXPECT_TRUE(m_properties.showLabels()->value());
}

TEST_F(ImageViewPropertiesTest, EachChangeIsNamedAfterItsProperty)
{
    m_properties.showLabels()->setValue(true);
    m_properties.variablesInLabel()->setValue({Project::project().caseIDVariable()});
    m_properties.tagGroupsToShow()->setValue({m_side});
    m_properties.tagsToShow()->setValue({"good"});
    m_properties.zoom()->setValue(26);

    Tags texts;
    for (int i = 0; i < history().count(); ++i) {
        texts.push_back(history().text(i).toStdString());
    }
    EXPECT_THAT(
        texts,
        ElementsAre(
            "Change Show Labels",
            "Change Variables In Label",
            "Change Tag Groups to Show",
            "Change Tags to Show",
            "Change Zoom"));
}

TEST_F(ImageViewPropertiesTest, AllTagsAreThoseOfTheGroupsThenTheSingleOnesEachOnce)
{
    m_properties.tagsToShow()->setValue({"good", "other", "good"});
    m_properties.tagGroupsToShow()->setValue({m_side, m_quality, m_side});
    EXPECT_THAT(allTags(), ElementsAre("left", "right", "good", "bad", "other"));
    m_properties.tagsToShow()->setValue({"other", "left"});

    EXPECT_THAT(
        m_told, ElementsAre(Tags{"good", "other"}, Tags{"left", "right", "good", "bad", "other"}))
        << "the last change made no difference";

    history().undo();
    history().undo();
    EXPECT_THAT(allTags(), ElementsAre("good", "other"));
    EXPECT_EQ(m_told.size(), 3U);
}

TEST_F(ImageViewPropertiesTest, AllTagsFollowTheTagsOfTheGroups)
{
    m_properties.tagGroupsToShow()->setValue({m_quality});
    history().clear();

    Project::project().addTag("quality", "odd");
    EXPECT_THAT(allTags(), ElementsAre("good", "bad", "odd"));
    Project::project().removeTag("good");
    EXPECT_THAT(allTags(), ElementsAre("bad", "odd"));

    EXPECT_EQ(m_told.size(), 3U);
    EXPECT_EQ(history().count(), 0);
}

TEST_F(ImageViewPropertiesTest, RemovedTagsAndGroupsAreTakenOutUndoably)
{
    m_properties.tagGroupsToShow()->setValue({m_quality, m_side});
    m_properties.tagsToShow()->setValue({"left", "other", "right", "left", "good"});
    history().clear();

    Project::project().removeTag("good");
    EXPECT_THAT(m_properties.tagsToShow()->value(), ElementsAre("left", "other", "right", "left"));
    EXPECT_THAT(allTags(), ElementsAre("bad", "left", "right", "other"));
    EXPECT_EQ(history().count(), 1);

    Project::project().removeTagGroup("side");
    EXPECT_THAT(m_properties.tagsToShow()->value(), ElementsAre("other"));
    EXPECT_THAT(m_properties.tagGroupsToShow()->value(), ElementsAre(m_quality));
    EXPECT_THAT(allTags(), ElementsAre("bad", "other"));
    EXPECT_EQ(history().count(), 3);

    // Undo brings the settings back, not the group.
    history().undo();
    EXPECT_THAT(m_properties.tagGroupsToShow()->value(), ElementsAre(m_quality, m_side));
    EXPECT_THAT(allTags(), ElementsAre("bad", "other"));
    history().undo();
    EXPECT_THAT(allTags(), ElementsAre("bad", "left", "other", "right"));
    history().redo();
    EXPECT_THAT(allTags(), ElementsAre("bad", "other"));
}

TEST_F(ImageViewPropertiesTest, NothingOfAClosedStudyIsListed)
{
    m_properties.tagGroupsToShow()->setValue({m_quality});

    Project nothing;
    Project::project().replaceStudy(nothing);

    EXPECT_THAT(allTags(), IsEmpty());
}

TEST_F(ImageViewPropertiesTest, MissesWhatHappensWhileSuspended)
{
    m_properties.tagsToShow()->setValue({"good", "bad", "left"});
    m_properties.suspend();
    Project::project().removeTag("good");
    m_properties.tagGroupsToShow()->setValue({m_quality});
    m_properties.resume();
    EXPECT_THAT(m_properties.tagsToShow()->value(), ElementsAre("good", "bad", "left"));
    EXPECT_THAT(allTags(), ElementsAre("good", "bad", "left"));

    Project::project().removeTag("left");
    EXPECT_THAT(m_properties.tagsToShow()->value(), ElementsAre("good", "bad"));
    EXPECT_THAT(allTags(), ElementsAre("bad", "good"));
}

} // namespace
