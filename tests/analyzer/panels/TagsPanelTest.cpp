#include <analyzer/filters/FilterList.h>
#include <analyzer/panels/TagsPanel.h>
#include <analyzer/tags/TagEditor.h>

#include <dataviews/platform/pipeline/DataPipelineManager.h>
#include <dataviews/platform/selection/SelectionModel.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QContextMenuEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QTest>
#include <QTreeView>

#include <boost/make_shared.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

using analyzer::FilterList;
using analyzer::TagEditor;
using analyzer::TagsPanel;
using testing::ElementsAre;

namespace {

constexpr std::size_t caseCount = 1300;

class TagsPanelTest : public testing::Test
{
protected:
    using Ids = std::set<unsigned long long>;

    TagsPanelTest()
    {
        UndoStack::history().clear();
        open();
        m_panel = std::make_unique<TagsPanel>(m_editor, m_selection);
        m_panel->resize(220, 500);
        m_panel->show();
        m_panel->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(m_panel.get()));
    }

    ~TagsPanelTest() override
    {
        m_panel.reset();
        UndoStack::history().clear();
        Project nothing;
        project().replaceStudy(nothing);
    }

    static Project& project() { return Project::project(); }

    /// A study with a picture for each of the first cases, tagged by its reader.
    static void open()
    {
        Project study;
        study.setCaseCount(caseCount);
        study.addTagGroup("Images");
        study.addTag("Images", "pressure");
        for (std::size_t row = 0; row < 3; ++row) {
            study.tagAuxFile(*study.addAuxFile(row, "/p.png"), "pressure", true);
        }
        project().replaceStudy(study);
    }

    template <class Widget>
    Widget& widget(const char* name)
    {
        auto* found = m_panel->findChild<Widget*>(QString::fromLatin1(name));
        if (found == nullptr) {
            throw std::logic_error("there is no " + std::string(name));
        }
        return *found;
    }

    void click(const char* button)
    {
        QTest::mouseClick(&widget<QAbstractButton>(button), Qt::LeftButton);
    }

    QTreeView& tree() { return widget<QTreeView>("TagTree"); }

    /// The row called \p name, of a group or a tag.
    QModelIndex row(const QString& name)
    {
        const QModelIndexList found = tree().model()->match(
            tree().model()->index(0, 0),
            Qt::DisplayRole,
            name,
            1,
            Qt::MatchExactly | Qt::MatchCaseSensitive | Qt::MatchRecursive);
        if (found.isEmpty()) {
            throw std::logic_error("there is no row " + name.toStdString());
        }
        return found.first();
    }

    Qt::CheckState state(const QString& tag)
    {
        return static_cast<Qt::CheckState>(row(tag).data(Qt::CheckStateRole).toInt());
    }

    QString count(const QString& tag) { return row(tag).siblingAtColumn(1).data().toString(); }

    QString key(const QString& tag) { return row(tag).siblingAtColumn(2).data().toString(); }

    void clickBox(const QString& tag)
    {
        const QRect place = tree().visualRect(row(tag));
        QTest::mouseClick(
            tree().viewport(), Qt::LeftButton, {}, {place.left() + 10, place.center().y()});
    }

    /// By the user, as everything here.
    void addTag(const QString& name)
    {
        click("AddTag");
        QTest::keyClicks(&widget<QLineEdit>("TagName"), name);
        QTest::keyClick(&widget<QLineEdit>("TagName"), Qt::Key_Return);
    }

    void choose(const QString& rowName, const QString& text)
    {
        const QPoint place = tree().visualRect(row(rowName)).center();
        QContextMenuEvent event(
            QContextMenuEvent::Mouse, place, tree().viewport()->mapToGlobal(place));
        QApplication::sendEvent(tree().viewport(), &event);
        auto& menu = widget<QMenu>("TagMenu");
        m_offered.clear();
        for (QAction* action : menu.actions()) {
            const QString plain = action->text().remove('&');
            m_offered.append(action->isEnabled() ? plain : "(" + plain + ")");
            if (plain == text) {
                action->trigger();
                menu.close();
                return;
            }
        }
        menu.close();
    }

    /// What the panel says above the list; empty while it says nothing.
    QString problem()
    {
        const auto& label = widget<QLabel>("TagsProblem");
        return label.isVisible() ? label.text() : QString();
    }

    static std::vector<std::string> tags(const std::string& group)
    {
        const boost::shared_ptr<TagGroup> found = project().tagGroup(group).lock();
        return found ? found->tags() : std::vector<std::string>();
    }

    DataPipelineManager m_pipeline{project()};
    FilterList m_filters{m_pipeline};
    TagEditor m_editor{m_filters};
    boost::shared_ptr<SelectionModel> m_selection = boost::make_shared<SelectionModel>();
    std::unique_ptr<TagsPanel> m_panel;
    QStringList m_offered; ///< by the menu that was opened last, up to what was chosen
};

TEST_F(TagsPanelTest, FirstTagComesWithAGroupInOneStep)
{
    addTag("  good  one ");

    EXPECT_THAT(tags("My Tags"), ElementsAre("good one"));
    EXPECT_EQ(UndoStack::history().count(), 1);
    EXPECT_FALSE(widget<QLineEdit>("TagName").isVisible());
    EXPECT_TRUE(tree().hasFocus());
    EXPECT_EQ(tree().currentIndex(), row("good one"));

    UndoStack::history().undo();
    EXPECT_TRUE(project().tagGroup("My Tags").isNull());
}

TEST_F(TagsPanelTest, NewTagComesIntoTheGroupOfTheCurrentRow)
{
    click("AddTagGroup");
    QTest::keyClicks(&widget<QLineEdit>("TagName"), "First");
    click("AcceptTagName");
    m_editor.addGroup("Second");
    m_editor.addTag("Second", "b");

    EXPECT_EQ(tree().currentIndex(), row("First")) << "Other tags leave the current row.";
    addTag("a");
    EXPECT_THAT(tags("First"), ElementsAre("a"));
    tree().setCurrentIndex(row("b"));
    addTag("c");
    EXPECT_THAT(tags("Second"), ElementsAre("b", "c"));
    tree().setCurrentIndex(row("pressure"));
    addTag("d");
    EXPECT_THAT(tags("Second"), ElementsAre("b", "c", "d")) << "The study's group takes none.";
}

TEST_F(TagsPanelTest, RefusedNameStaysToBeMended)
{
    addTag("good");

    addTag("good");
    EXPECT_EQ(problem(), "There is a tag \"good\" already.");
    EXPECT_EQ(widget<QLineEdit>("TagName").text(), "good");
    EXPECT_TRUE(widget<QLineEdit>("TagName").hasFocus());

    QTest::keyClicks(&widget<QLineEdit>("TagName"), "better");
    EXPECT_EQ(problem(), "");
    QTest::keyClick(&widget<QLineEdit>("TagName"), Qt::Key_Return);
    EXPECT_THAT(tags("My Tags"), ElementsAre("good", "better"));

    addTag("");
    EXPECT_EQ(problem(), "A tag needs a name.");
    QTest::keyClick(&widget<QLineEdit>("TagName"), Qt::Key_Escape);
    EXPECT_EQ(problem(), "");
    EXPECT_FALSE(widget<QLineEdit>("TagName").isVisible());
    EXPECT_EQ(UndoStack::history().count(), 2);
}

TEST_F(TagsPanelTest, TickFollowsSelectionAndTagsAndPutsTheTagOnAllOrNone)
{
    addTag("good");
    m_selection->setSelection({1, 2, 1300});
    EXPECT_EQ(widget<QLabel>("TagsTarget").text(), "3 cases are selected");
    EXPECT_EQ(state("good"), Qt::Unchecked);

    clickBox("good");
    EXPECT_EQ(state("good"), Qt::Checked);
    EXPECT_EQ(count("good"), "3");
    m_selection->setSelection({1, 5});
    EXPECT_EQ(state("good"), Qt::PartiallyChecked);
    m_selection->setSelection({5});
    EXPECT_EQ(state("good"), Qt::Unchecked);

    m_selection->setSelection({1, 5});
    clickBox("good");
    EXPECT_EQ(state("good"), Qt::Checked) << "Some carry it: all do then.";
    EXPECT_EQ(count("good"), "4");
    clickBox("good");
    EXPECT_EQ(count("good"), "2");
    UndoStack::history().undo();
    EXPECT_EQ(state("good"), Qt::Checked);
    UndoStack::history().undo();
    EXPECT_EQ(state("good"), Qt::PartiallyChecked);
    EXPECT_EQ(UndoStack::history().redoText(), "Tag 1 Case good");
}

TEST_F(TagsPanelTest, TickWithNothingSelectedSaysSo)
{
    addTag("good");

    clickBox("good");
    EXPECT_EQ(problem(), "Select the cases to put the tag on.");
    EXPECT_EQ(state("good"), Qt::Unchecked);
    m_selection->setSelection({1});
    EXPECT_EQ(problem(), "");
    click("TagImages");
    clickBox("good");
    EXPECT_EQ(problem(), "Make a view active that shows the images to put the tag on.");
    EXPECT_EQ(UndoStack::history().count(), 1);
}

TEST_F(TagsPanelTest, KeysActInTheList)
{
    addTag("good");
    m_selection->setSelection({7});
    tree().setCurrentIndex(row("good").siblingAtColumn(1));

    QTest::keyClick(&tree(), Qt::Key_Space);
    EXPECT_EQ(state("good"), Qt::Checked);
    QTest::keyClick(&tree(), Qt::Key_Space);
    EXPECT_EQ(state("good"), Qt::Unchecked);
    QTest::keyClick(&tree(), Qt::Key_Delete);
    EXPECT_FALSE(project().hasTag("good"));
    EXPECT_EQ(tree().currentIndex(), row("My Tags"));
    tree().setCurrentIndex(row("pressure"));
    QTest::keyClick(&tree(), Qt::Key_Delete);
    EXPECT_EQ(problem(), "The tag \"pressure\" belongs to the study and cannot be removed.");
}

TEST_F(TagsPanelTest, NumbersToggleTheUsersFirstNineTags)
{
    for (int number = 1; number <= 10; ++number) {
        addTag("tag " + QString::number(number));
    }
    EXPECT_EQ(key("tag 1"), "1");
    EXPECT_EQ(key("tag 9"), "9");
    EXPECT_EQ(key("tag 10"), "");
    EXPECT_EQ(key("pressure"), "");
    m_selection->setSelection({1});

    m_panel->toggleTag(9);
    EXPECT_EQ(state("tag 9"), Qt::Checked);
    m_panel->toggleTag(9);
    EXPECT_EQ(state("tag 9"), Qt::Unchecked);
    m_panel->toggleTag(0);
    m_panel->toggleTag(11);
    EXPECT_EQ(UndoStack::history().count(), 12);

    m_panel->hide();
    m_selection->setSelection({4, 5});
    m_panel->toggleTag(1);
    EXPECT_EQ(project().taggedCases("tag 1").count(), 2U) << "A hidden panel acts on the present.";
    m_panel->show();
    EXPECT_EQ(state("tag 1"), Qt::Checked);
}

TEST_F(TagsPanelTest, ActsOnImagesInstead)
{
    addTag("good");
    m_selection->setSelection({1});
    TagEditor::Files images = {project().auxFiles(0)[0], project().auxFiles(1)[0]};
    m_panel->setImages([&images] { return images; });

    click("TagImages");
    EXPECT_EQ(widget<QLabel>("TagsTarget").text(), "2 images of the active view");
    clickBox("good");
    EXPECT_EQ(state("good"), Qt::Checked);
    EXPECT_EQ(count("good"), "2");
    EXPECT_EQ(project().taggedCases("good").count(), 0U);
    EXPECT_TRUE(images[1]->hasOwnTag("good"));
    images.push_back(project().auxFiles(2)[0]);
    m_panel->imagesChanged();
    EXPECT_EQ(state("good"), Qt::PartiallyChecked);
    EXPECT_EQ(count("pressure"), "3");

    m_selection->setSelection({1, 2});
    click("TagCases");
    EXPECT_EQ(widget<QLabel>("TagsTarget").text(), "2 cases are selected");
    EXPECT_EQ(state("good"), Qt::Unchecked);
    EXPECT_EQ(count("good"), "0");
}

TEST_F(TagsPanelTest, MenuOfATagFiltersSelectsShowsAndRemoves)
{
    addTag("good");
    m_selection->setSelection({1, 2, 3});
    clickBox("good");
    std::vector<std::string> told;
    m_panel->signalShowUnderImages.connect([&](const std::string& tag) { told.push_back(tag); });
    m_panel->signalLayOutByTags.connect([&](const std::string& group) { told.push_back(group); });
    choose("good", "Show under Images");
    choose("good", "Lay Out Matrix by Tags");
    EXPECT_THAT(told, ElementsAre("good", "My Tags"));

    m_selection->setSelection({3, 9});
    m_filters.addRangeFilter("Case ID", {2.0, 1000.0});
    choose("good", "Add Them to the Selection");
    EXPECT_EQ(m_selection->getSelections(), (Ids{2, 3, 9})) << "Of those that are shown.";
    choose("good", "Select Cases with Tag");
    EXPECT_EQ(m_selection->getSelections(), (Ids{2, 3}));
    choose("good", "Filter by Tag");
    EXPECT_EQ(m_pipeline.passingCount(), 2U);
    UndoStack::history().undo();
    EXPECT_EQ(m_filters.filters().size(), 1U);
    UndoStack::history().redo();

    choose("good", "Remove Tag");
    EXPECT_EQ(m_filters.filters().size(), 1U);
    UndoStack::history().undo();
    EXPECT_EQ(m_pipeline.passingCount(), 2U);
    EXPECT_EQ(count("good"), "3");
    choose("My Tags", "Remove Group");
    EXPECT_EQ(tree().model()->rowCount(), 1);
}

TEST_F(TagsPanelTest, StudysTagsHaveNoTickAndAreNotRemoved)
{
    choose("pressure", "nothing of it");

    EXPECT_EQ(
        m_offered.join(","),
        "(Filter by Tag),(Select Cases with Tag),(Add Them to the Selection),Show under Images,Lay "
        "Out Matrix by Tags,,(Remove Tag),,New Tag…,New Group…");
    EXPECT_FALSE(row("pressure").data(Qt::CheckStateRole).isValid());
    EXPECT_EQ(count("pressure"), "3") << "Its images.";
}

TEST_F(TagsPanelTest, OtherTagsLeaveWhatIsCollapsedAndCurrent)
{
    m_editor.addTag("Quality", "good");
    m_editor.addTag("Material", "steel");
    tree().collapse(row("Quality"));
    tree().setCurrentIndex(row("steel"));

    m_editor.addTag("Quality", "bad");

    EXPECT_FALSE(tree().isExpanded(row("Quality")));
    EXPECT_TRUE(tree().isExpanded(row("Images")));
    EXPECT_EQ(tree().currentIndex(), row("steel"));
}

TEST_F(TagsPanelTest, FollowsAnotherStudy)
{
    addTag("good");
    m_selection->setSelection({1200});
    m_panel->setImages([images = TagEditor::Files{project().auxFiles(0)[0]}] { return images; });
    click("AddTag");
    Project small;
    small.setCaseCount(3);

    project().replaceStudy(small);
    EXPECT_EQ(tree().model()->rowCount(), 0);
    EXPECT_TRUE(widget<QLabel>("TagsEmpty").isVisible());
    EXPECT_FALSE(widget<QLineEdit>("TagName").isVisible());
    m_selection->setSelection({2});
    addTag("new");
    clickBox("new");
    EXPECT_EQ(project().taggedCases("new").count(), 1U);
    click("TagImages");
    clickBox("new");
    EXPECT_EQ(project().taggedAuxFileCount("new"), 0U) << "The images are the former study's.";

    Project nothing;
    project().replaceStudy(nothing);
    EXPECT_EQ(widget<QLabel>("TagsTarget").text(), "No study is open");
    EXPECT_FALSE(widget<QAbstractButton>("AddTag").isEnabled());
}

} // namespace
