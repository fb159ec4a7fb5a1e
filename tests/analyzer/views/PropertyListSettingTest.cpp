#include <analyzer/views/TagGroupListSetting.h>
#include <analyzer/views/TagListSetting.h>
#include <analyzer/views/VariableListSetting.h>

#include <dataviews/common/views/Property.h>
#include <dataviews/common/views/UndoablePropertyProxy.h>

#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

#include <tests/support/SmallStudy.h>

namespace {

using Names = std::vector<std::string>;

template <class T>
boost::shared_ptr<corvane::PropertyAbstract<std::vector<T>>> undoableList()
{
    return boost::make_shared<corvane::UndoablePropertyProxy<std::vector<T>>>(
        "List", boost::make_shared<corvane::Property<std::vector<T>>>(std::vector<T>()));
}

std::string refusal(analyzer::SettingInterface& setting, const std::string& text)
{
    try {
        setting.setText(text);
    } catch (const ExceptionBase& error) {
        return error.what();
    }
    return {};
}

class PropertyListSettingTest : public testing::Test
{
protected:
    PropertyListSettingTest()
    {
        m_study.add("plain", std::vector<double>{1.0})
            .add("with, comma", std::vector<double>{2.0})
            .add("\"quoted\\\"", std::vector<double>{3.0})
            .open();
        Project& project = Project::project();
        project.addTagGroup("Images");
        project.addTagGroup("Notes");
        project.addTag("Images", "front");
        project.addTag("Notes", "two\nlines");
        project.addTag("Images", "side");
        UndoStack::history().clear();
    }

    ~PropertyListSettingTest() override { UndoStack::history().clear(); }

    SmallStudy m_study{1};
};

TEST_F(PropertyListSettingTest, ChoicesAreThoseOfTheOpenStudy)
{
    const analyzer::VariableListSetting variables(
        "label-variables", "Variables", undoableList<WeakPtr<Variable>>());
    const analyzer::TagListSetting tags("tags", "Tags", undoableList<std::string>());
    const analyzer::TagGroupListSetting groups(
        "tag-groups", "Tag groups", undoableList<WeakPtr<TagGroup>>());

    EXPECT_EQ(variables.choices(), (Names{"Case ID", "plain", "with, comma", "\"quoted\\\""}));
    EXPECT_EQ(tags.choices(), (Names{"front", "side", "two\nlines"}));
    EXPECT_EQ(groups.choices(), (Names{"Images", "Notes"}));
}

TEST_F(PropertyListSettingTest, EveryListOfNamesSurvivesItsText)
{
    analyzer::VariableListSetting variables(
        "label-variables", "Variables", undoableList<WeakPtr<Variable>>());
    analyzer::TagListSetting tags("tags", "Tags", undoableList<std::string>());
    analyzer::TagGroupListSetting groups(
        "tag-groups", "Tag groups", undoableList<WeakPtr<TagGroup>>());

    for (analyzer::ListSettingInterface* setting :
         std::initializer_list<analyzer::ListSettingInterface*>{&variables, &tags, &groups}) {
        SCOPED_TRACE(setting->name());
        Names chosen = setting->choices();
        std::reverse(chosen.begin(), chosen.end());

        setting->setSelected(chosen);
        const std::string text = setting->text();
        setting->setText("");
        EXPECT_EQ(setting->selected(), Names());
        EXPECT_EQ(setting->text(), "");
        setting->setText(text);

        EXPECT_EQ(setting->selected(), chosen) << text;
    }
}

TEST_F(PropertyListSettingTest, SetsAsOneStepAndTakesADoubledNameOnce)
{
    analyzer::TagListSetting tags("tags", "Tags", undoableList<std::string>());
    int changes = 0;
    tags.signalChanged.connect([&changes] { ++changes; });

    tags.setText("side,front,side");
    EXPECT_EQ(tags.text(), "side,front");
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(UndoStack::history().count(), 1);

    UndoStack::history().undo();
    EXPECT_EQ(tags.text(), "");
}

TEST_F(PropertyListSettingTest, RefusesWhatIsNoListOfChoices)
{
    analyzer::VariableListSetting variables(
        "label-variables", "Variables", undoableList<WeakPtr<Variable>>());
    analyzer::TagListSetting tags("tags", "Tags", undoableList<std::string>());
    analyzer::TagGroupListSetting groups(
        "tag-groups", "Tag groups", undoableList<WeakPtr<TagGroup>>());
    tags.setText("side");

    EXPECT_EQ(refusal(variables, "plain,nowhere"), "The study has no variable \"nowhere\".");
    EXPECT_EQ(refusal(tags, "front,Images"), "The study has no tag \"Images\".");
    EXPECT_EQ(refusal(tags, "front,"), "The study has no tag \"\".");
    EXPECT_EQ(refusal(groups, "side"), "The study has no tag group \"side\".");
    EXPECT_NE(refusal(tags, "fr\\ont").find("\"fr\\ont\""), std::string::npos);
    EXPECT_EQ(tags.text(), "side");
}

TEST_F(PropertyListSettingTest, LeavesOutWhatIsGone)
{
    analyzer::TagGroupListSetting groups(
        "tag-groups", "Tag groups", undoableList<WeakPtr<TagGroup>>());
    groups.setText("Images,Notes");

    Project::project().removeTagGroup("Images");

    EXPECT_EQ(groups.text(), "Notes");
}

} // namespace
