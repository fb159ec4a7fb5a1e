#include <dataviews/common/views/BoundedValueValidator.h>
#include <dataviews/common/views/Property.h>
#include <dataviews/common/views/PropertyTypeAdapter.h>

#include <boost/function.hpp>
#include <boost/make_shared.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using testing::ElementsAre;
using Adapter = corvane::PropertyTypeAdapter<bool, int>;

class PropertyTypeAdapterTest : public testing::Test
{
protected:
    PropertyTypeAdapterTest()
    {
        m_adapted->valueChanged.connect(
            [this](int value) { m_told.push_back("int " + std::to_string(value)); });
        m_adapter.valueChanged.connect(
            [this](bool value) { m_told.emplace_back(value ? "true" : "false"); });
    }

    boost::shared_ptr<corvane::Property<int>> m_adapted =
        boost::make_shared<corvane::Property<int>>(
            0, boost::make_shared<corvane::BoundedValueValidator<int>>(0, 1));
    int m_checkedNumber = 1;
    Adapter m_adapter{
        m_adapted,
        [](int number) { return number != 0; },
        [this](bool on) { return on ? m_checkedNumber : 0; }};
    std::vector<std::string> m_told;
};

TEST_F(PropertyTypeAdapterTest, WritesThroughAndReadsBackTheAdaptedValue)
{
    m_adapter.setValue(true);
    m_adapter.setValue(true);

    EXPECT_EQ(m_adapted->value(), 1);
    EXPECT_TRUE(m_adapter.value());
    EXPECT_THAT(m_told, ElementsAre("int 1", "true"));

    m_adapted->setValue(0);
    EXPECT_FALSE(m_adapter.value());
}

TEST_F(PropertyTypeAdapterTest, RefusesWhatTheAdaptedPropertyRefuses)
{
    m_checkedNumber = 2;

    try {
        m_adapter.setValue(true);
        FAIL() << "The value was not refused.";
    } catch (const corvane::InvalidPropertyValueException& error) {
        EXPECT_STREQ(
            error.what(),
            "The value must be greater than or equal to 0 and less than or equal to 1.");
    }

    EXPECT_EQ(m_adapted->value(), 0);
    EXPECT_THAT(m_told, ElementsAre());
}

TEST_F(PropertyTypeAdapterTest, EmptyConversionsFailWithTheStandardError)
{
    Adapter readOnly(m_adapted, [](int number) { return number != 0; }, {});
    const Adapter writeOnly(m_adapted, {}, [](bool on) { return on ? 1 : 0; });

    EXPECT_FALSE(readOnly.value());
    try {
        readOnly.setValue(true);
        FAIL() << "The empty function was called.";
    } catch (const boost::bad_function_call& error) {
        EXPECT_STREQ(error.what(), "call to empty boost::function");
    }
    EXPECT_THROW((void)writeOnly.value(), boost::bad_function_call);
    EXPECT_EQ(m_adapted->value(), 0);
}

} // namespace
