#include <analyzer/views/PageValueSetting.h>

#include <dataviews/platform/undo/UndoStack.h>

#include <gtest/gtest.h>

#include <limits>

#include <tests/support/SmallStudy.h>

namespace {

using By = ImageMatrixViewProperties::PageDimensionBy;
using Names = std::vector<std::string>;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

std::string refusal(analyzer::SettingInterface& setting, const std::string& text)
{
    try {
        setting.setText(text);
    } catch (const ExceptionBase& error) {
        return error.what();
    }
    return {};
}

class PageValueSettingTest : public testing::Test
{
protected:
    PageValueSettingTest()
    {
        m_study.add("whole", {3.0, 1.0, nan, 3.0})
            .add("real", {0.5, 1.0 / 3, 2.0, 0.5})
            .add("alike", {0.1, 0.10000001, 0.5, nan})
            .add("text", Names{"b", "(missing)", "", "10"})
            .open();
        Project::project().addTagGroup("Images");
        for (const char* tag : {"side", "front"}) {
            Project::project().addTag("Images", tag);
        }
    }

    ~PageValueSettingTest() override { UndoStack::history().clear(); }

    void pageBy(const std::string& variable)
    {
        m_properties.choosePageVariable(Project::project().variable(variable));
        m_properties.choosePages(By::ByVariable);
    }

    SmallStudy m_study{4};
    ImageMatrixViewProperties m_properties;
    analyzer::PageValueSetting m_setting{"page-value", "Page", m_properties};
};

TEST_F(PageValueSettingTest, HasNoChoicesWhereThereIsOnePage)
{
    EXPECT_EQ(m_setting.count(), 0U);
    EXPECT_EQ(m_setting.text(), "");
    EXPECT_FALSE(m_setting.isEnabled());
    EXPECT_NE(refusal(m_setting, "3").find("there are no pages"), std::string::npos);
}

TEST_F(PageValueSettingTest, OffersTheTagsThatAreShown)
{
    m_properties.tagGroupsToShow()->setValue({Project::project().tagGroup("Images")});
    m_properties.choosePages(By::ByTag);

    EXPECT_TRUE(m_setting.isEnabled());
    EXPECT_EQ(m_setting.choices(), (Names{"side", "front"}));
    EXPECT_EQ(m_setting.text(), "side");
    m_setting.setText("front");
    EXPECT_EQ(m_properties.pageValue()->value(), Variant("front"));
    EXPECT_EQ(m_setting.place(), std::optional<std::size_t>(1));
    EXPECT_EQ(refusal(m_setting, "top"), "\"top\" is not among the tags that are shown.");
    m_properties.tagGroupsToShow()->setValue({});
    EXPECT_EQ(m_setting.count(), 0U);
    EXPECT_FALSE(m_setting.place());
}

TEST_F(PageValueSettingTest, OffersTheValuesOfTheVariable)
{
    const struct
    {
        const char* variable;
        Names choices;
    } cases[] = {
        {"whole", {"1", "3", "(missing)"}},
        {"real", {"0.333333", "0.5", "2"}},
        {"alike", {"0.1", "0.10000001", "0.5", "(missing)"}},
        {"text", {"(missing)", "10", "b", "((missing))"}},
    };

    for (const auto& c : cases) {
        SCOPED_TRACE(c.variable);
        pageBy(c.variable);

        ASSERT_EQ(m_setting.choices(), c.choices);
        EXPECT_EQ(m_setting.place(), std::optional<std::size_t>(0));
        for (std::size_t place = c.choices.size(); place-- > 0;) {
            m_setting.setText(c.choices[place]);
            EXPECT_EQ(m_setting.place(), std::optional(place));
            EXPECT_EQ(m_setting.text(), c.choices[place]);
        }
    }
}

TEST_F(PageValueSettingTest, TakesNumbersInFullAndAsTheyRead)
{
    pageBy("real");
    for (const char* text : {"0.333333", "0.3333333333333333"}) {
        m_setting.setPlace(1);
        m_setting.setText(text);
        EXPECT_EQ(m_properties.pageValue()->value(), Variant(1.0 / 3)) << text;
    }
    m_setting.setText("2.0");
    EXPECT_EQ(m_properties.pageValue()->value(), Variant(2.0));
    EXPECT_EQ(refusal(m_setting, "0.33333"), "\"0.33333\" is not a value of real.");
    EXPECT_EQ(refusal(m_setting, "half"), "\"half\" is not a value of real.");
    EXPECT_EQ(refusal(m_setting, "(missing)"), "\"(missing)\" is not a value of real.");
    EXPECT_EQ(m_setting.text(), "2");
}

TEST_F(PageValueSettingTest, RefusesANumberThatSeveralReadLike)
{
    SmallStudy study(2);
    study.add("x", {0.1000001, 0.10000002}).open();
    pageBy("x");

    EXPECT_EQ(
        refusal(m_setting, "0.1"),
        "\"0.1\" stands for several values of page-value; write one in full, such as 0.10000002.");
}

TEST_F(PageValueSettingTest, StepsOfPagesAreOneUndoStep)
{
    pageBy("real");
    UndoStack::history().clear();

    m_setting.setPlace(1);
    m_setting.setPlace(2);

    EXPECT_EQ(UndoStack::history().count(), 1);
    UndoStack::history().undo();
    EXPECT_EQ(m_setting.place(), std::optional<std::size_t>(0));
}

TEST_F(PageValueSettingTest, TellsWhenChoicesOrTheEnablingChange)
{
    int changes = 0;
    m_setting.signalChanged.connect([&changes] { ++changes; });
    const auto changed = [&changes] { return std::exchange(changes, 0) > 0; };

    m_properties.dimensionPagesBy()->setValue(By::ByTag);
    EXPECT_TRUE(changed());
    m_properties.tagsToShow()->setValue({"front"});
    EXPECT_TRUE(changed());
    EXPECT_EQ(m_setting.choices(), Names{"front"});
    m_properties.dimensionPagesBy()->setValue(By::ByVariable);
    EXPECT_TRUE(changed());
    m_properties.pageVar()->setValue(Project::project().variable("whole"));
    EXPECT_TRUE(changed());
    EXPECT_EQ(m_setting.count(), 3U);
    m_properties.pageValue()->setValue(Variant(3));
    EXPECT_TRUE(changed());
    EXPECT_EQ(m_setting.text(), "3");
    Project nothing;
    Project::project().replaceStudy(nothing);
    EXPECT_TRUE(changed());
    EXPECT_EQ(m_setting.count(), 0U);
}

} // namespace
