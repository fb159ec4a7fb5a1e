#include <dataviews/platform/property/InvalidPropertyValueException.h>

#include <gtest/gtest.h>

namespace {

TEST(InvalidPropertyValueExceptionTest, IsCaughtByEachBaseWithItsMessage)
{
    const std::string message = "The value must be greater than 3 °C.";
    const auto refuse = [&message] { throw corvane::InvalidPropertyValueException(message); };

    try {
        refuse();
        FAIL() << "nothing was thrown";
    } catch (const ExceptionBase& error) {
        EXPECT_EQ(error.what(), message);
    }
    try {
        refuse();
        FAIL() << "nothing was thrown";
    } catch (const std::exception& error) {
        EXPECT_EQ(error.what(), message);
    }
}

} // namespace
