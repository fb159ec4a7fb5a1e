#include <dataviews/common/views/BoundedValueValidator.h>
#include <dataviews/common/views/Property.h>
#include <dataviews/common/views/PropertyAbstract.h>
#include <dataviews/common/views/ValueRangeValidator.h>

#include <boost/make_shared.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using corvane::InvalidPropertyValueException;
using testing::ElementsAre;

/// Notes what is done to it, in order.
class TracingProperty : public corvane::PropertyAbstract<int>
{
public:
    using Base = corvane::PropertyAbstract<int>;
    using Base::Base;

    mutable std::vector<std::string> m_trace;
    int m_value = 1;

protected:
    void signalValueChangedConnected() const override { m_trace.emplace_back("connected"); }

    void storeValue(const int& value) override
    {
        m_trace.push_back("store " + std::to_string(value));
        m_value = value;
    }

    [[nodiscard]] bool isEqual(const int& value) const override
    {
        m_trace.push_back("isEqual " + std::to_string(value));
        return Base::isEqual(value);
    }

    void validate(const int& value) const override
    {
        m_trace.push_back("validate " + std::to_string(value));
        Base::validate(value);
    }

    [[nodiscard]] int storedValue() const override { return m_value; }

    void emitValueChangedSignal(const int& value) const override
    {
        m_trace.push_back("emit " + std::to_string(value));
        Base::emitValueChangedSignal(value);
    }
};

TEST(PropertyAbstractTest, ValidatesComparesStoresAndTellsInThisOrder)
{
    TracingProperty property(boost::make_shared<corvane::BoundedValueValidator<int>>(0, 9));
    property.valueChanged.connect(
        [&](int value) { property.m_trace.push_back("told " + std::to_string(value)); });
    EXPECT_THAT(property.m_trace, ElementsAre("connected"));

    property.m_trace.clear();
    property.setValue(5);
    EXPECT_THAT(
        property.m_trace, ElementsAre("validate 5", "isEqual 5", "store 5", "emit 5", "told 5"));

    property.m_trace.clear();
    property.setValue(5);
    EXPECT_THAT(property.m_trace, ElementsAre("validate 5", "isEqual 5"));
}

TEST(PropertyAbstractTest, RefusedValueChangesNothing)
{
    TracingProperty property(boost::make_shared<corvane::BoundedValueValidator<int>>(0, 9));
    // Present and refused at once: validation comes before the comparison.
    property.m_value = 10;

    try {
        property.setValue(10);
        FAIL() << "The value was not refused.";
    } catch (const InvalidPropertyValueException& error) {
        EXPECT_STREQ(
            error.what(),
            "The value must be greater than or equal to 0 and less than or equal to 9.");
    }

    EXPECT_THAT(property.m_trace, ElementsAre("validate 10"));
    EXPECT_EQ(property.value(), 10);
}

TEST(PropertyAbstractTest, WithoutAValidatorAnyValueIsAccepted)
{
    TracingProperty property;

    property.setValue(std::numeric_limits<int>::min());

    EXPECT_EQ(property.value(), std::numeric_limits<int>::min());
    ASSERT_TRUE(property.validator());
    EXPECT_TRUE(property.validator()->validate(7).isValid());
}

TEST(PropertyAbstractTest, ExceptionOfAListenerPassesOnWithTheValueStored)
{
    corvane::Property<int> property(1);
    bool throwing = true;
    int seen = 0;
    property.valueChanged.connect([&](int) {
        if (throwing) {
            throw std::runtime_error("listener");
        }
        seen = property.value();
    });

    EXPECT_THROW(property.setValue(2), std::runtime_error);
    EXPECT_EQ(property.value(), 2);

    throwing = false;
    property.setValue(3);
    EXPECT_EQ(seen, 3) << "A listener is told before the value is stored.";
}

TEST(PropertyAbstractTest, TellsUntypedListenersOncePerChange)
{
    corvane::Property<int> property(1);
    property.setValue(2);
    int told = 0;
    const auto connection = property.signalPropertyChanged.connect([&] { ++told; });

    property.setValue(3);
    property.setValue(3);
    EXPECT_EQ(told, 1);

    connection.disconnect();
    property.setValue(4);
    EXPECT_EQ(told, 1);
}

TEST(PropertyAbstractTest, RangesAreComparedExactlyAtBothEnds)
{
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    corvane::Property<ValueRange_s<double>> property(
        {1.0, 2.0}, boost::make_shared<corvane::ValueRangeValidator<double>>());
    int told = 0;
    property.valueChanged.connect([&](const ValueRange_s<double>&) { ++told; });

    property.setValue({1.0, 2.0});
    EXPECT_EQ(told, 0);
    property.setValue({1.0, 2.5});
    property.setValue({0.5, 2.5});
    EXPECT_EQ(told, 2);
    EXPECT_THROW(property.setValue({3.0, 2.5}), InvalidPropertyValueException);
    EXPECT_EQ(property.value(), (ValueRange_s<double>{0.5, 2.5}));
    EXPECT_EQ(told, 2);

    // A range that holds a NaN is not even equal to itself.
    property.setValue({nan, 2.5});
    property.setValue({nan, 2.5});
    EXPECT_EQ(told, 4);
}

} // namespace
