#include <dataviews/common/views/ValueRangeValidator.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

TEST(ValueRangeValidatorTest, RefusesOnlyAMinimumAboveTheMaximum)
{
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const ValueRange_s<double> valid[] = {
        {1.0, 2.0},
        {2.0, 2.0},
        {-0.0, 0.0},
        {nan, 1.0},
        {1.0, nan},
        {nan, nan},
        {-infinity, infinity}};
    const ValueRange_s<double> invalid[] = {
        {2.0, 1.0}, {infinity, -infinity}, {1.0, std::nextafter(1.0, 0.0)}};
    const corvane::ValueRangeValidator<double> validator;

    for (const ValueRange_s<double>& range : valid) {
        EXPECT_TRUE(validator.validate(range).isValid()) << range.min << ' ' << range.max;
    }
    for (const ValueRange_s<double>& range : invalid) {
        const corvane::ValidationResult result = validator.validate(range);
        EXPECT_FALSE(result.isValid()) << range.min << ' ' << range.max;
        EXPECT_EQ(result.errorString(), "Minimum cannot be greater than maximum.");
    }
}

} // namespace
