#include <dataviews/common/views/BoundedValueValidator.h>
#include <dataviews/common/views/Property.h>

#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

namespace {

TEST(PropertyTest, RefusesAnInvalidInitialValue)
{
    const auto validator = boost::make_shared<corvane::BoundedValueValidator<short>>(3, 40);

    for (const short initial : {short(2), short(41)}) {
        try {
            const corvane::Property<short> property(initial, validator);
            FAIL() << initial << " was accepted.";
        } catch (const corvane::InvalidPropertyValueException& error) {
            EXPECT_STREQ(
                error.what(),
                "The value must be greater than or equal to 3 and less than or equal to 40.");
        }
    }
    for (const short initial : {short(3), short(40)}) {
        const corvane::Property<short> property(initial, validator);
        EXPECT_EQ(property.value(), initial);
        EXPECT_EQ(property.validator(), validator);
    }
}

} // namespace
