#include <analyzer/filters/FilterList.h>
#include <analyzer/tags/TagEditor.h>

#include <dataviews/common/images/ImageMatrixViewProperties.h>

#include <dataviews/platform/pipeline/DataPipelineManager.h>
#include <dataviews/platform/property/ExceptionBase.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

#include <tests/support/SmallStudy.h>

using analyzer::FilterList;
using analyzer::TagEditor;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Tags = std::vector<std::string>;

/// A study of four cases, each with a picture, tagged by its reader.
void fill(Project& study)
{
    study.setCaseCount(4);
    study.addTagGroup("Images");
    study.addTag("Images", "pressure");
    for (std::size_t row = 0; row < 4; ++row) {
        study.tagAuxFile(*study.addAuxFile(row, "/p.png"), "pressure", true);
    }
}

class TagEditorTest : public testing::Test
{
protected:
    TagEditorTest()
    {
        UndoStack::history().clear();
        open();
    }

    ~TagEditorTest() override
    {
        UndoStack::history().clear();
        Project nothing;
        project().replaceStudy(nothing);
    }

    static Project& project() { return Project::project(); }

    static void open()
    {
        Project study;
        fill(study);
        project().replaceStudy(study);
    }

    static RowBitmap rows(const std::vector<std::size_t>& in)
    {
        RowBitmap bitmap(4);
        for (const std::size_t row : in) {
            bitmap.set(row);
        }
        return bitmap;
    }

    static Tags tags(const std::string& group) { return project().tagGroup(group).lock()->tags(); }

    static std::vector<QString> steps()
    {
        std::vector<QString> texts;
        texts.reserve(static_cast<std::size_t>(UndoStack::history().count()));
        for (int i = 0; i < UndoStack::history().count(); ++i) {
            texts.push_back(UndoStack::history().text(i));
        }
        return texts;
    }

    template <class Function>
    static std::string refusal(Function function)
    {
        try {
            function();
        } catch (const ExceptionBase& error) {
            return error.what();
        }
        return "accepted";
    }

    DataPipelineManager m_pipeline{project()};
    FilterList m_filters{m_pipeline};
    TagEditor m_editor{m_filters};
};

TEST_F(TagEditorTest, EachChangeIsOneNamedStep)
{
    m_editor.addGroup("Quality");
    m_editor.addTag("Quality", "good");
    m_editor.addTag("New", "other"); // with its group
    EXPECT_EQ(m_editor.tagCases("good", rows({0, 1, 2}), true), 3U);
    EXPECT_EQ(m_editor.tagCases("good", rows({2, 3}), true), 1U);
    EXPECT_EQ(m_editor.tagCases("good", rows({0, 1}), false), 2U);
    const TagEditor::Files& files = project().auxFiles(0);
    EXPECT_EQ(m_editor.tagFiles("good", {files[0], files[0]}, true), 1U);
    m_editor.removeTag("other");
    m_editor.removeGroup("Quality");

    EXPECT_THAT(
        steps(),
        ElementsAre(
            "Add Tag Group Quality",
            "Add Tag good",
            "Add Tag other",
            "Tag 3 Cases good",
            "Tag 1 Case good",
            "Untag 2 Cases good",
            "Tag 1 Image good",
            "Remove Tag other",
            "Remove Tag Group Quality"));
}

TEST_F(TagEditorTest, WhatChangesNothingIsNoStep)
{
    m_editor.addTag("Quality", "good");
    m_editor.tagCases("good", rows({1}), true);
    const int before = UndoStack::history().count();

    EXPECT_EQ(m_editor.tagCases("good", rows({1}), true), 0U);
    EXPECT_EQ(m_editor.tagCases("good", rows({2, 3}), false), 0U);
    EXPECT_EQ(m_editor.tagFiles("good", project().auxFiles(1), false), 0U);
    EXPECT_EQ(m_editor.tagFiles("good", {}, true), 0U);

    EXPECT_EQ(UndoStack::history().count(), before);
}

TEST_F(TagEditorTest, UndoOfTaggingLeavesCasesThatCarriedTheTagBefore)
{
    m_editor.addTag("Quality", "good");
    m_editor.tagCases("good", rows({1}), true);
    m_editor.tagCases("good", rows({0, 1, 2}), true);

    UndoStack::history().undo();
    EXPECT_EQ(project().taggedCases("good"), rows({1}));

    UndoStack::history().redo();
    EXPECT_EQ(project().taggedCases("good"), rows({0, 1, 2}));
}

TEST_F(TagEditorTest, TellsTheUsersGroupsFromTheStudys)
{
    m_editor.addTag("Quality", "good");
    m_editor.addTag("Quality", "bad");
    m_editor.addGroup("Empty");

    EXPECT_FALSE(m_editor.isUserGroup("Images"));
    EXPECT_FALSE(m_editor.isUserGroup("unknown"));
    EXPECT_TRUE(m_editor.isUserGroup("Empty"));
    EXPECT_FALSE(m_editor.isUserTag("pressure"));
    EXPECT_THAT(m_editor.userTags(), ElementsAre("good", "bad"));
    ASSERT_EQ(m_editor.userGroups().size(), 2U);
    EXPECT_EQ(m_editor.userGroups()[0]->name(), "Quality");
    EXPECT_EQ(m_editor.userGroups()[1]->name(), "Empty");

    UndoStack::history().undo();
    UndoStack::history().undo();
    EXPECT_EQ(m_editor.userGroups().size(), 1U);
    UndoStack::history().redo();
    UndoStack::history().redo();
    EXPECT_EQ(m_editor.userGroups().size(), 2U) << "They come back as the user's.";
}

TEST_F(TagEditorTest, RefusesWithoutAChange)
{
    m_editor.addTag("Quality", "good");
    const int before = UndoStack::history().count();
    const TagEditor::Files& files = project().auxFiles(0);

    EXPECT_EQ(
        refusal([&] { m_editor.addTag("Images", "mine"); }),
        "The tag group \"Images\" belongs to the study; add your tags to a group of your own.");
    EXPECT_EQ(
        refusal([&] { m_editor.tagCases("pressure", rows({0}), true); }),
        "The tag \"pressure\" belongs to the study and cannot be put on cases or taken off.");
    EXPECT_EQ(
        refusal([&] { m_editor.tagFiles("pressure", files, false); }),
        "The tag \"pressure\" belongs to the study and cannot be put on images or taken off.");
    EXPECT_EQ(
        refusal([&] { m_editor.removeTag("pressure"); }),
        "The tag \"pressure\" belongs to the study and cannot be removed.");
    EXPECT_EQ(
        refusal([&] { m_editor.removeGroup("Images"); }),
        "The tag group \"Images\" belongs to the study and cannot be removed.");
    EXPECT_EQ(refusal([&] { m_editor.removeTag("x"); }), "There is no tag \"x\".");
    EXPECT_EQ(refusal([&] { m_editor.removeGroup("x"); }), "There is no tag group \"x\".");
    EXPECT_EQ(refusal([&] { m_editor.addTag("New", ""); }), "A tag needs a name.");
    EXPECT_EQ(
        refusal([&] { m_editor.addTag("New", "pressure"); }),
        "There is a tag \"pressure\" already.");
    EXPECT_EQ(
        refusal([&] { m_editor.addGroup("Images"); }), "There is a tag group \"Images\" already.");

    EXPECT_TRUE(project().tagGroup("New").isNull()) << "The group of a refused tag is not made.";
    EXPECT_EQ(UndoStack::history().count(), before);
}

TEST_F(TagEditorTest, RemovedTagComesBackWithItsFiltersAndTheListsOfViews)
{
    ImageMatrixViewProperties view;
    view.dimensionRowsBy()->setValue(ImageMatrixViewProperties::RowColumnDimensionBy::ByTag);
    m_editor.addTag("Quality", "best");
    m_editor.addTag("Quality", "good");
    m_editor.addTag("Quality", "bad");
    m_editor.tagCases("good", rows({1, 2}), true);
    m_editor.tagFiles("good", project().auxFiles(3), true);
    m_filters.addTagFilter("bad");
    const FilterList::FilterPtr filter = m_filters.addTagFilter("good");
    filter->inverted()->setValue(true);
    m_filters.addTagFilter("good");
    m_filters.filters().back()->enabled()->setValue(false);
    m_filters.filters().front()->enabled()->setValue(false);
    const std::vector<FilterList::FilterPtr> filters = m_filters.filters();
    view.tagsToShow()->setValue({"good", "pressure"});
    const WeakPtr<TagGroup> quality = project().tagGroup("Quality");
    view.tagGroupsToShow()->setValue({quality});

    const auto expectThere = [&] {
        EXPECT_THAT(tags("Quality"), ElementsAre("best", "good", "bad"));
        EXPECT_EQ(project().taggedCases("good"), rows({1, 2}));
        EXPECT_TRUE(project().auxFiles(3)[0]->hasOwnTag("good"));
        EXPECT_EQ(m_filters.filters(), filters);
        EXPECT_EQ(m_pipeline.passingRows(), rows({0, 3}));
        EXPECT_EQ(view.tagsToShow()->value(), (Tags{"good", "pressure"}));
        EXPECT_THAT(view.tagGroupsToShow()->value(), ElementsAre(quality));
        EXPECT_FALSE(quality.expired());
        EXPECT_EQ(view.allTagsToShow()->value(), (Tags{"best", "good", "bad", "pressure"}));
    };
    const std::vector<QString> before = steps();
    for (const bool wholeGroup : {false, true}) {
        SCOPED_TRACE(wholeGroup ? "the group" : "the tag");
        const auto expectGone = [&] {
            EXPECT_FALSE(project().hasTag("good"));
            EXPECT_EQ(project().tagGroup("Quality").isNull(), wholeGroup);
            EXPECT_EQ(m_filters.filters().size(), wholeGroup ? 0U : 1U);
            EXPECT_EQ(m_pipeline.passingCount(), 4U);
            EXPECT_EQ(view.tagsToShow()->value(), Tags{"pressure"});
            EXPECT_EQ(
                view.allTagsToShow()->value(),
                wholeGroup ? Tags{"pressure"} : (Tags{"best", "bad", "pressure"}));
        };
        if (wholeGroup) {
            m_editor.removeGroup("Quality");
        } else {
            m_editor.removeTag("good");
        }
        ASSERT_EQ(steps().size(), before.size() + 1) << "All in one step.";
        for (int round = 0; round < 2; ++round) {
            expectGone();
            UndoStack::history().undo();
            expectThere();
            UndoStack::history().redo();
        }
        expectGone();
        UndoStack::history().undo();
        expectThere();
    }
}

TEST_F(TagEditorTest, HistoryOfAFormerStudyLeavesTheNextOneAlone)
{
    m_editor.addTag("Quality", "good");
    m_editor.tagCases("good", rows({1}), true);
    const TagEditor::Files formerFiles = project().auxFiles(0);
    open();
    EXPECT_THAT(m_editor.userGroups(), IsEmpty());
    project().addTagGroup("Quality"); // as a reader does
    project().addTag("Quality", "good");
    project().tagCases("good", rows({1, 2}), true);
    EXPECT_FALSE(m_editor.isUserTag("good"));

    while (UndoStack::history().canUndo()) {
        UndoStack::history().undo();
    }
    EXPECT_EQ(project().taggedCases("good"), rows({1, 2}));
    while (UndoStack::history().canRedo()) {
        UndoStack::history().redo();
    }
    EXPECT_EQ(project().taggedCases("good"), rows({1, 2}));

    m_editor.addTag("Mine", "checked");
    EXPECT_EQ(m_editor.tagFiles("checked", formerFiles, true), 0U);
    EXPECT_EQ(project().taggedAuxFileCount("checked"), 0U);
}

TEST_F(TagEditorTest, HistoryDoesNothingOnceTheEditorIsGone)
{
    {
        TagEditor editor(m_filters);
        editor.addTag("Quality", "good");
    }

    UndoStack::history().undo();

    EXPECT_TRUE(project().hasTag("good"));
}

} // namespace
