#include <dataviews/common/views/BoundedValueValidator.h>

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace {

using corvane::BoundedValueValidator;

TEST(BoundedValueValidatorTest, AcceptsWhatLiesBetweenItsBoundsAndNamesBothOtherwise)
{
    struct Case
    {
        int lowerType;
        int upperType;
        short firstValid;
        short lastValid;
        std::string message;
    };

    constexpr short lowest = std::numeric_limits<short>::min();
    constexpr short highest = std::numeric_limits<short>::max();
    const Case cases[] = {
        {0, 0, 3, 40, "The value must be greater than or equal to 3 and less than or equal to 40."},
        {0, 1, 3, 39, "The value must be greater than or equal to 3 and less than 40."},
        {1, 0, 4, 40, "The value must be greater than 3 and less than or equal to 40."},
        {1, 1, 4, 39, "The value must be greater than 3 and less than 40."},
        {2, 0, lowest, 40, "The value must be greater than 3 and less than or equal to 40."},
        {0, -1, 3, highest, "The value must be greater than or equal to 3 and less than 40."},
        {7, 2, lowest, highest, ""},
    };

    for (const Case& c : cases) {
        const BoundedValueValidator<short> validator(3, 40, c.lowerType, c.upperType);
        for (int number = lowest; number <= highest; ++number) {
            const auto value = static_cast<short>(number);
            const bool valid = value >= c.firstValid && value <= c.lastValid;

            const corvane::ValidationResult result = validator.validate(value);

            ASSERT_EQ(result.isValid(), valid)
                << c.lowerType << ' ' << c.upperType << ": " << number;
            ASSERT_EQ(result.errorString(), valid ? "" : c.message) << number;
        }
    }
}

} // namespace
