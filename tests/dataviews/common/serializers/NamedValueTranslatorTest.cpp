#include <dataviews/common/serializers/NamedValueTranslator.h>

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace {

enum Side
{
    Left = 4,
    Right = 2,
    Neither = 9
};

TEST(NamedValueTranslatorTest, TranslatesBothWaysAndKeepsTheFirstOfTwo)
{
    NamedValueTranslator<Side> names;
    names.add("left", Left);
    names.add("right", Right);

    names.add("port", Left);
    names.add("right", Neither);

    EXPECT_EQ(names.name(Left), "left");
    EXPECT_EQ(names.value("left"), Left);
    EXPECT_EQ(names.name(Right), "right");
    EXPECT_EQ(names.value("right"), Right);
    EXPECT_THROW((void)names.name(Neither), std::out_of_range);
    try {
        (void)names.value("port");
        FAIL();
    } catch (const std::out_of_range& error) {
        EXPECT_EQ(std::string(error.what()), "bimap<>: invalid key");
    }
}

} // namespace
