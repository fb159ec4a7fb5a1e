#include <dataviews/platform/data/Variant.h>
#include <dataviews/platform/property/ExceptionBase.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <locale>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include <rapidcheck/gtest.h>

/// For messages of failures.
static std::ostream& operator<<(std::ostream& stream, const Variant& value)
{
    return stream << "type " << static_cast<int>(value.type()) << " \"" << value.toString() << '"';
}

namespace {

constexpr std::int64_t smallestInteger = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t largestInteger = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t exact = std::int64_t(1) << 53;
constexpr double twoTo63 = 9223372036854775808.0;
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double denormal = std::numeric_limits<double>::denorm_min();
constexpr double largest = std::numeric_limits<double>::max();

/// Hard values in ascending order; those in one row are equal.
std::vector<std::vector<Variant>> sortedValues()
{
    const auto exactReal = static_cast<double>(exact);
    return {
        {Variant()},
        {Variant(-infinity)},
        {Variant(-largest)},
        {Variant(std::nextafter(-twoTo63, -infinity))},
        {Variant(smallestInteger), Variant(-twoTo63)},
        {Variant(smallestInteger + 1)},
        {Variant(std::nextafter(-twoTo63, 0.0))},
        {Variant(-exact - 2), Variant(-exactReal - 2.0)},
        {Variant(-exact - 1)},
        {Variant(-exact), Variant(-exactReal)},
        {Variant(-1), Variant(-1.0)},
        {Variant(-0.5)},
        {Variant(-denormal)},
        {Variant(0), Variant(0.0), Variant(-0.0), Variant(false), Variant(0U)},
        {Variant(denormal)},
        {Variant(0.1)},
        {Variant(1), Variant(1.0), Variant(true)},
        {Variant(1.5)},
        {Variant(2), Variant(2.0F)},
        {Variant(exact - 1), Variant(exactReal - 1.0)},
        {Variant(exact), Variant(exactReal)},
        {Variant(exact + 1)},
        {Variant(exact + 2), Variant(exactReal + 2.0)},
        {Variant(std::nextafter(twoTo63, 0.0)), Variant(largestInteger - 1023)},
        {Variant(largestInteger - 1)},
        {Variant(largestInteger), Variant(std::uint64_t(largestInteger))},
        {Variant(twoTo63)},
        {Variant(1e22)},
        {Variant(largest)},
        {Variant(infinity)},
        {Variant(nan), Variant(-nan), Variant(std::nan("7"))},
        {Variant(""), Variant(std::string())},
        {Variant(std::string(1, '\0'))},
        {Variant("-1")},
        {Variant("10")},
        {Variant("9")},
        {Variant("Z")},
        {Variant("a")},
        {Variant(std::string("a\0", 2))},
        {Variant("ab")},
        {Variant("z")},
        {Variant("\xC3\xA9")},
        {Variant("\xFF")},
    };
}

int sign(int number)
{
    return (number > 0) - (number < 0);
}

TEST(VariantTest, OrderOfHardValues)
{
    const std::vector<std::vector<Variant>> rows = sortedValues();
    for (std::size_t leftRow = 0; leftRow < rows.size(); ++leftRow) {
        for (std::size_t rightRow = 0; rightRow < rows.size(); ++rightRow) {
            for (const Variant& left : rows[leftRow]) {
                for (const Variant& right : rows[rightRow]) {
                    SCOPED_TRACE(testing::Message() << left << " and " << right);
                    const int expected = leftRow < rightRow ? -1 : (leftRow > rightRow ? 1 : 0);
                    EXPECT_EQ(sign(Variant::compare(left, right)), expected);
                    EXPECT_TRUE(
                        (left == right) == (expected == 0) && (left != right) == (expected != 0));
                    EXPECT_TRUE(
                        (left < right) == (expected < 0) && (left >= right) == (expected >= 0));
                    EXPECT_TRUE(
                        (left > right) == (expected > 0) && (left <= right) == (expected <= 0));
                    if (expected == 0) {
                        EXPECT_EQ(left.hash(), right.hash());
                    }
                }
            }
        }
    }
}

/// Values of all kinds, with many neighbours of one another.
rc::Gen<Variant> anyVariant()
{
    const auto integer = rc::gen::resize(100, rc::gen::arbitrary<std::int64_t>());
    const auto real = rc::gen::map(
        rc::gen::resize(100, rc::gen::arbitrary<std::uint64_t>()), [](std::uint64_t bits) {
            double value = 0.0;
            static_assert(sizeof(value) == sizeof(bits));
            std::memcpy(&value, &bits, sizeof(value));
            return Variant(value);
        });
    const auto near = rc::gen::map(
        integer, [](std::int64_t value) { return Variant(static_cast<double>(value)); });
    const auto hard = rc::gen::exec([] {
        const auto row = *rc::gen::elementOf(sortedValues());
        return *rc::gen::elementOf(row);
    });
    const auto small = rc::gen::map(rc::gen::inRange(-6, 7), [](int half) {
        return half % 2 == 0 ? Variant(half / 2) : Variant(half / 2.0);
    });
    const auto text = rc::gen::map(
        rc::gen::arbitrary<std::string>(), [](const std::string& t) { return Variant(t); });
    return rc::gen::oneOf(
        rc::gen::map(integer, [](std::int64_t value) { return Variant(value); }),
        real,
        near,
        hard,
        small,
        text);
}

RC_GTEST_PROP(VariantTest, OrderIsTotal, ())
{
    constexpr std::size_t count = 24;
    const auto values = *rc::gen::container<std::vector<Variant>>(count, anyVariant());
    for (const Variant& a : values) {
        RC_ASSERT(Variant::compare(a, a) == 0);
        for (const Variant& b : values) {
            RC_ASSERT(sign(Variant::compare(a, b)) == -sign(Variant::compare(b, a)));
            RC_ASSERT(a != b || a.hash() == b.hash());
            for (const Variant& c : values) {
                RC_ASSERT(!(a <= b && b <= c) || a <= c);
                RC_ASSERT(
                    !(a == b) || sign(Variant::compare(a, c)) == sign(Variant::compare(b, c)));
            }
        }
    }
}

RC_GTEST_PROP(VariantTest, TextReadsBackToTheSameNumber, ())
{
    const Variant value = *anyVariant();
    const Variant text(value.toString());
    switch (value.type()) {
    case Variant::Type::Integer:
        RC_ASSERT(text.toInteger() == value.toInteger());
        break;
    case Variant::Type::Real: {
        const double number = value.toReal();
        const double readBack = text.toReal();
        RC_ASSERT(number == readBack || (std::isnan(number) && std::isnan(readBack)));
        RC_ASSERT(std::isnan(number) || std::signbit(number) == std::signbit(readBack));
        break;
    }
    case Variant::Type::Empty:
    case Variant::Type::Text:
        RC_ASSERT(text.toString() == value.toString());
        break;
    }
}

/// The decimal comma of some locales, which texts of values must not have.
struct Comma : std::numpunct<char>
{
    char do_decimal_point() const override { return ','; }
};

TEST(VariantTest, TextIsTheShortestInTheCLocale)
{
    const std::locale before = std::locale::global(std::locale(std::locale::classic(), new Comma));
    EXPECT_EQ(Variant().toString(), "");
    EXPECT_EQ(Variant(1234567).toString(), "1234567");
    EXPECT_EQ(Variant(smallestInteger).toString(), "-9223372036854775808");
    EXPECT_EQ(Variant(0.1).toString(), "0.1");
    EXPECT_EQ(Variant(0.1 + 0.2).toString(), "0.30000000000000004");
    EXPECT_EQ(Variant(3.0).toString(), "3");
    EXPECT_EQ(Variant(1e22).toString(), "1e+22");
    EXPECT_EQ(Variant(denormal).toString(), "5e-324");
    EXPECT_EQ(Variant(-infinity).toString(), "-inf");
    EXPECT_EQ(Variant(nan).toString(), "nan");
    EXPECT_EQ(Variant(-nan).toString(), "nan");
    EXPECT_EQ(Variant("1,5 °C").toString(), "1,5 °C");
    EXPECT_EQ(Variant("2.5").toReal(), 2.5);
    std::locale::global(before);
}

TEST(VariantTest, ToInteger)
{
    const struct
    {
        Variant value;
        std::int64_t integer;
    } cases[] = {
        {Variant(largestInteger), largestInteger},
        {Variant(3.99), 3},
        {Variant(-3.99), -3},
        {Variant(-0.0), 0},
        {Variant(-twoTo63), smallestInteger},
        {Variant(std::nextafter(twoTo63, 0.0)), 9223372036854774784},
        {Variant("-9223372036854775808"), smallestInteger},
        {Variant("+4"), 4},
        {Variant("007"), 7},
        {Variant("-0"), 0},
    };

    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.value);
        EXPECT_EQ(c.value.toInteger(), c.integer);
    }

    std::vector<Variant> refused = {
        Variant(), Variant(nan), Variant(infinity), Variant(twoTo63), Variant(-1e300)};
    for (const char* text :
         {"", " 12", "12 ", "12abc", "3.7", "1e3", "+", "+-1", "--1", "9223372036854775808"}) {
        refused.emplace_back(text);
    }
    for (const Variant& value : refused) {
        SCOPED_TRACE(testing::Message() << value);
        EXPECT_THROW(static_cast<void>(value.toInteger()), ExceptionBase);
    }
}

TEST(VariantTest, ToRealRefusesWhatIsNoNumber)
{
    EXPECT_EQ(Variant("1e3").toReal(), 1000.0);
    EXPECT_EQ(Variant("+0.5").toReal(), 0.5);
    EXPECT_EQ(Variant(exact + 2).toReal(), static_cast<double>(exact + 2));
    for (const Variant& value :
         {Variant(), Variant(""), Variant("x"), Variant("1,5"), Variant("1.5 "), Variant("+")}) {
        SCOPED_TRACE(testing::Message() << value);
        EXPECT_THROW(static_cast<void>(value.toReal()), ExceptionBase);
    }
}

TEST(VariantTest, UnsignedNumberBeyondTheSignedRangeIsRefused)
{
    EXPECT_EQ(Variant(std::uint64_t(largestInteger)).toInteger(), largestInteger);
    EXPECT_EQ(Variant(4294967295U).toInteger(), 4294967295);
    EXPECT_THROW(Variant(std::uint64_t(largestInteger) + 1), std::out_of_range);
}

} // namespace
