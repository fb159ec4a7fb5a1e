#include <dataviews/platform/data/variantDisplayText.h>

#include <gtest/gtest.h>

#include <limits>

namespace {

TEST(VariantDisplayTextTest, ShowsValuesAsPeopleReadThem)
{
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();

    const struct
    {
        Variant value;
        const char* text;
    } cases[] = {
        {Variant(), "(missing)"},
        {Variant(""), ""},
        {Variant("0.12345678"), "0.12345678"},
        {Variant(123456789), "123456789"},
        {Variant(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808"},
        {Variant(0.12345678), "0.123457"},
        {Variant(-1234.5), "-1234.5"},
        {Variant(2.0), "2"},
        {Variant(123456.7), "123457"},
        {Variant(1234567.8), "1.23457e+06"},
        {Variant(1e-9), "1e-09"},
        {Variant(std::numeric_limits<double>::max()), "1.79769e+308"},
        {Variant(-std::numeric_limits<double>::infinity()), "-inf"},
        {Variant(nan), "nan"},
        {Variant(-nan), "nan"},
    };

    for (const auto& c : cases) {
        EXPECT_EQ(variantDisplayText(c.value), c.text);
    }
}

} // namespace
