#include <analyzer/views/RealSetting.h>

#include <dataviews/common/views/Property.h>
#include <dataviews/common/views/ValueRangeValidator.h>

#include <dataviews/platform/property/ValueRange_s.h>

#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

std::uint64_t bitsOf(double value)
{
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

class RealSettingTest : public testing::Test
{
protected:
    std::string messageFor(const std::string& text)
    {
        try {
            m_setting.setText(text);
        } catch (const ExceptionBase& error) {
            return error.what();
        }
        return "(accepted)";
    }

    boost::shared_ptr<corvane::Property<double>> m_property =
        boost::make_shared<corvane::Property<double>>(1);
    analyzer::RealSetting m_setting{"size", "Size", m_property};
};

TEST_F(RealSettingTest, TextsAreShortAndHaveAPoint)
{
    const std::vector<std::pair<double, std::string>> cases{
        {0.1 + 0.2, "0.3"},
        {1.0 / 3, "0.3333333333"},
        {1e20, "1e+20"},
        {-5, "-5"},
        {-0.0, "0"},
        {1234567890, "1234567890"},
        {12345678901, "1.23456789e+10"},
        {1e-7, "1e-07"},
        {-std::numeric_limits<double>::max(), "-1.797693135e+308"},
        {std::numeric_limits<double>::denorm_min(), "4.940656458e-324"},
        {nan, ""},
        {-infinity, "-inf"}};
    for (const auto& [value, text] : cases) {
        SCOPED_TRACE(text);
        m_property->setValue(value);

        EXPECT_EQ(m_setting.text(), text);
    }
}

TEST_F(RealSettingTest, TakesNumbersInCForm)
{
    const std::vector<std::pair<std::string, double>> cases{
        {"2.5", 2.5},
        {" \t-2.5 ", -2.5},
        {"+7", 7},
        {"1E3", 1000},
        {".5", 0.5},
        {"5.", 5},
        {"0.1000000000000000055", 0.1},
        {"-1.7976931348623157e308", -std::numeric_limits<double>::max()},
        {"4.9406564584124654e-324", std::numeric_limits<double>::denorm_min()}};
    for (const auto& [text, value] : cases) {
        SCOPED_TRACE(text);

        m_setting.setText(text);

        EXPECT_EQ(bitsOf(m_property->value()), bitsOf(value));
    }
}

TEST_F(RealSettingTest, RefusesAnythingElseWithASentence)
{
    const std::vector<std::pair<std::string, std::string>> cases{
        {"abc", "\"abc\" is not a number."},
        {" 1 2 ", "\"1 2\" is not a number."},
        {"1,5", "\"1,5\" is not a number; write a point for the decimals."},
        {"-1,5e3", "\"-1,5e3\" is not a number; write a point for the decimals."},
        {"1.234,5", "\"1.234,5\" is not a number."},
        {"", "An empty text is not a number."},
        {"+", "\"+\" is not a number."},
        {"+-5", "\"+-5\" is not a number."},
        {"5 %", "\"5 %\" is not a number."},
        {"inf", "\"inf\" is not a finite number."},
        {"NaN", "\"NaN\" is not a finite number."},
        {"1e999", "\"1e999\" is beyond the numbers that can be stored."}};
    int changes = 0;
    m_setting.signalChanged.connect([&changes] { ++changes; });
    for (const auto& [text, message] : cases) {
        SCOPED_TRACE(text);

        EXPECT_EQ(messageFor(text), message);
    }

    EXPECT_EQ(m_property->value(), 1);
    EXPECT_EQ(changes, 0);
}

TEST_F(RealSettingTest, SettingTheTextThatIsShownNeverChangesTheValue)
{
    const std::vector<double> values{0.1 + 0.2, 1.0 / 3, 1e-310, -0.0, nan, infinity, -infinity};
    int changes = 0;
    for (const double value : values) {
        SCOPED_TRACE(value);
        const auto property = boost::make_shared<corvane::Property<double>>(value);
        analyzer::RealSetting setting("size", "Size", property);
        setting.signalChanged.connect([&changes] { ++changes; });

        setting.setText(setting.text());
        setting.setText(" " + setting.text() + " ");

        EXPECT_EQ(bitsOf(property->value()), bitsOf(value));
    }
    EXPECT_EQ(changes, 0);
}

TEST(RealSettingOfPartTest, TwoSettingsAreTheEndsOfOneRange)
{
    using Range = corvane::ValueRange_s<double>;
    const boost::shared_ptr<corvane::PropertyAbstract<Range>> range =
        boost::make_shared<corvane::Property<Range>>(
            Range{0, 1}, boost::make_shared<corvane::ValueRangeValidator<double>>());
    analyzer::RealSetting least(
        "min",
        "Minimum",
        [range] { return range->value().min; },
        [range](double value) {
            range->setValue({value, range->value().max});
        });
    analyzer::RealSetting most(
        "max",
        "Maximum",
        [range] { return range->value().max; },
        [range](double value) {
            range->setValue({range->value().min, value});
        });
    least.follow(range);
    most.follow(range);
    int changes = 0;
    least.signalChanged.connect([&changes] { ++changes; });

    most.setText("20");
    least.setText("10.5");
    EXPECT_EQ(range->value(), (Range{10.5, 20}));
    EXPECT_EQ(changes, 2) << "the other end may have changed this one too";
    try {
        least.setText("30");
        FAIL();
    } catch (const corvane::InvalidPropertyValueException& error) {
        EXPECT_STREQ(error.what(), "Minimum cannot be greater than maximum.");
    }
    EXPECT_EQ(least.text(), "10.5");
    EXPECT_EQ(changes, 2);
}

} // namespace
