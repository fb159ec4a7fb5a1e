#include <analyzer/views/NumberSetting.h>

#include <dataviews/common/views/Property.h>

#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

namespace {

class NumberSettingTest : public testing::Test
{
protected:
    boost::shared_ptr<corvane::Property<std::uint64_t>> m_property =
        boost::make_shared<corvane::Property<std::uint64_t>>(25);
    analyzer::NumberSetting m_setting{"zoom", "Zoom", m_property, {10, 100, 5}, " %"};
};

TEST_F(NumberSettingTest, TextsAreWholeNumbersInTheRange)
{
    int changes = 0;
    m_setting.signalChanged.connect([&changes] { ++changes; });

    m_setting.setText("100");
    EXPECT_EQ(m_property->value(), 100U);
    EXPECT_EQ(m_setting.text(), "100");
    m_setting.setText("010");
    EXPECT_EQ(m_setting.text(), "10");
    EXPECT_EQ(changes, 2);

    for (const char* text :
         {"", "9", "101", "-20", "+20", "20.5", " 20", "20 %", "18446744073709551636"}) {
        SCOPED_TRACE(text);
        EXPECT_THROW(m_setting.setText(text), ExceptionBase);
    }
    EXPECT_EQ(m_setting.text(), "10");
    EXPECT_EQ(changes, 2);
}

TEST_F(NumberSettingTest, RefusalNamesTheTextTheSettingAndTheRange)
{
    try {
        m_setting.setText("big");
        FAIL();
    } catch (const ExceptionBase& error) {
        EXPECT_STREQ(
            error.what(),
            "\"big\" is not a value of zoom, which takes whole numbers from 10 to 100.");
    }
}

TEST_F(NumberSettingTest, ShowsWhatOthersSetBeyondTheRange)
{
    m_property->setValue(400);

    EXPECT_EQ(m_setting.text(), "400");
}

TEST_F(NumberSettingTest, IsEnabledWhileAllConditionsHold)
{
    const auto mode = boost::make_shared<corvane::Property<int>>(1);
    const auto isOn = boost::make_shared<corvane::Property<bool>>(true);
    m_setting.enableWhile<int>(mode, [](int value) { return value == 1; });
    m_setting.enableWhile<bool>(isOn, [](bool value) { return value; });
    int changes = 0;
    m_setting.signalChanged.connect([&changes] { ++changes; });
    EXPECT_TRUE(m_setting.isEnabled());

    mode->setValue(2);
    EXPECT_FALSE(m_setting.isEnabled());
    EXPECT_EQ(changes, 1);
    mode->setValue(1);
    isOn->setValue(false);
    EXPECT_FALSE(m_setting.isEnabled());
    m_setting.setText("50");
    EXPECT_EQ(m_setting.text(), "50") << "disabled settings can be set";
}

} // namespace
