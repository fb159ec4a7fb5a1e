#include "columns.h"

#include <dataviews/platform/data/Variable.h>
#include <dataviews/platform/property/ExceptionBase.h>

#include <vtkFloatArray.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <set>

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

std::unique_ptr<Variable> make(vtkSmartPointer<vtkAbstractArray> column)
{
    return std::make_unique<Variable>(std::move(column), Variable::Output);
}

void expectSameType(const Variant& value, const Variant& expected)
{
    EXPECT_EQ(value.type(), expected.type());
    EXPECT_TRUE(value == expected) << value.toString() << " instead of " << expected.toString();
}

TEST(VariableTest, NumbersAreSummedUp)
{
    const struct
    {
        const char* description;
        std::vector<double> values;
        double min;
        double max;
        Variant first;
        std::size_t missing;
        std::size_t distinct;
        bool whole;
    } cases[] = {
        {"reals", {2.5, nan, -1.5, 2.5}, -1.5, 2.5, Variant(-1.5), 1, 2, false},
        {"whole numbers with a gap", {3.0, nan, -7.0}, -7.0, 3.0, Variant(-7), 1, 2, true},
        {"infinities", {infinity, 1.0, -infinity, 4.0}, 1.0, 4.0, Variant(-infinity), 0, 4, false},
        {"one infinity only", {infinity, nan}, nan, nan, Variant(infinity), 1, 1, false},
        {"all missing", {nan, -nan}, nan, nan, Variant(), 2, 0, true},
        {"no cases", {}, nan, nan, Variant(), 0, 0, true},
        {"zeros of both signs", {0.0, -0.0}, 0.0, 0.0, Variant(0), 0, 1, true},
        {"largest exact whole",
         {9007199254740992.0},
         9007199254740992.0,
         9007199254740992.0,
         Variant(9007199254740992),
         0,
         1,
         true},
        {"too large to be exact",
         {9007199254740994.0, 1.0},
         1.0,
         9007199254740994.0,
         Variant(1.0),
         0,
         2,
         false},
    };

    for (const auto& c : cases) {
        SCOPED_TRACE(c.description);
        const auto variable = make(realColumn("x", c.values));

        const ValueRange_s<double> range = variable->range();
        if (std::isnan(c.min)) {
            EXPECT_TRUE(std::isnan(range.min) && std::isnan(range.max));
        } else {
            EXPECT_EQ(range, (ValueRange_s<double>{c.min, c.max}));
        }
        expectSameType(variable->firstValue(), c.first);
        EXPECT_EQ(variable->missingCount(), c.missing);
        EXPECT_EQ(variable->distinctValueCount(), c.distinct);
        EXPECT_EQ(variable->isWhole(), c.whole);
        EXPECT_TRUE(variable->isNumeric());
    }
}

TEST(VariableTest, TextsAreSummedUp)
{
    const auto variable = make(textColumn("name", {"b", "", "\xC3\xA9", "B", "b", "10"}));

    EXPECT_FALSE(variable->isNumeric());
    EXPECT_FALSE(variable->isWhole());
    EXPECT_TRUE(std::isnan(variable->range().min) && std::isnan(variable->range().max));
    expectSameType(variable->firstValue(), Variant("10"));
    EXPECT_EQ(variable->missingCount(), 1U);
    EXPECT_EQ(variable->distinctValueCount(), 4U);
    expectSameType(make(textColumn("name", {"", ""}))->firstValue(), Variant());
}

TEST(VariableTest, IntegersAreSummedUp)
{
    const auto variable = make(integerColumn("id", {5, -3, 5}));

    EXPECT_TRUE(variable->isNumeric());
    EXPECT_TRUE(variable->isWhole());
    EXPECT_EQ(variable->range(), (ValueRange_s<double>{-3.0, 5.0}));
    expectSameType(variable->firstValue(), Variant(-3));
    EXPECT_EQ(variable->missingCount(), 0U);
    EXPECT_EQ(variable->distinctValueCount(), 2U);
    EXPECT_EQ(variable->realColumn(), nullptr);
}

TEST(VariableTest, ValuesComeInTheirType)
{
    const auto mixed = make(realColumn("x", {1.0, nan, 0.5, infinity}));
    expectSameType(mixed->value(0), Variant(1.0));
    expectSameType(mixed->value(1), Variant());
    expectSameType(mixed->value(2), Variant(0.5));
    expectSameType(mixed->value(3), Variant(infinity));
    const auto whole = make(realColumn("x", {1.0, nan}));
    expectSameType(whole->value(0), Variant(1));
    expectSameType(whole->value(1), Variant());
    const auto texts = make(textColumn("x", {"7", ""}));
    expectSameType(texts->value(0), Variant("7"));
    expectSameType(texts->value(1), Variant());
}

TEST(VariableTest, CountsDistinctValuesUpToOneMoreThanFifty)
{
    for (const int distinct : {49, 50, 51, 200}) {
        SCOPED_TRACE(distinct);
        std::vector<double> numbers;
        std::vector<std::string> texts;
        for (int round = 0; round < 2; ++round) {
            for (int number = 0; number < distinct; ++number) {
                numbers.push_back((number * 7919) % distinct); // in no order
                texts.push_back(std::to_string((number * 7919) % distinct));
            }
        }
        const auto expected = static_cast<std::size_t>(std::min(distinct, 51));

        EXPECT_EQ(make(realColumn("x", numbers))->distinctValueCount(), expected);
        EXPECT_EQ(make(textColumn("x", texts))->distinctValueCount(), expected);
    }
}

TEST(VariableTest, DistinctValuesComeAscendingInTheirType)
{
    const struct
    {
        const char* description;
        std::unique_ptr<Variable> variable;
        std::vector<Variant> expected;
    } cases[] = {
        {"reals",
         make(realColumn("x", {2.5, nan, -infinity, 2.5, 1.0})),
         {Variant(-infinity), Variant(1.0), Variant(2.5)}},
        {"whole numbers", make(realColumn("x", {3.0, nan, -7.0, 3.0})), {Variant(-7), Variant(3)}},
        {"integers", make(integerColumn("x", {5, -3, 5})), {Variant(-3), Variant(5)}},
        {"texts",
         make(textColumn("x", {"b", "", "10", "9", "b"})),
         {Variant("10"), Variant("9"), Variant("b")}},
        {"all missing", make(realColumn("x", {nan})), {}},
    };

    for (const auto& c : cases) {
        SCOPED_TRACE(c.description);
        const std::vector<Variant> values = c.variable->distinctValues();

        ASSERT_EQ(values.size(), c.expected.size());
        for (std::size_t place = 0; place < values.size(); ++place) {
            expectSameType(values[place], c.expected[place]);
        }
    }
}

TEST(VariableTest, DistinctValuesAreCompleteWhereThereAreMany)
{
    std::vector<double> numbers;
    std::vector<std::string> texts;
    std::set<Variant> expectedNumbers;
    std::set<Variant> expectedTexts;
    constexpr int count = 500;
    for (int number = 0; number < 2 * count; ++number) {
        numbers.push_back(((number * 7919) % count) + 0.5);
        texts.push_back(std::to_string((number * 7919) % count));
        expectedNumbers.insert(Variant(numbers.back()));
        expectedTexts.insert(Variant(texts.back()));
    }

    EXPECT_EQ(
        make(realColumn("x", numbers))->distinctValues(),
        std::vector<Variant>(expectedNumbers.begin(), expectedNumbers.end()));
    EXPECT_EQ(
        make(textColumn("x", texts))->distinctValues(),
        std::vector<Variant>(expectedTexts.begin(), expectedTexts.end()));
}

TEST(VariableTest, ComputesOnceAndKeeps)
{
    const auto column = realColumn("x", {1.0, 2.0});
    const auto variable = make(column);
    const ValueRange_s<double> range = variable->range();

    column->SetValue(0, -100.0);

    EXPECT_EQ(variable->range(), range);
}

TEST(VariableTest, RefusesColumnsItCannotUse)
{
    const auto pairs = realColumn("pairs", {});
    pairs->SetNumberOfComponents(2);
    const auto floats = vtkSmartPointer<vtkFloatArray>::New();
    floats->SetName("floats");
    const auto nameless = vtkSmartPointer<vtkDoubleArray>::New();

    for (const vtkSmartPointer<vtkAbstractArray>& column :
         std::vector<vtkSmartPointer<vtkAbstractArray>>{
             pairs, floats, nameless, realColumn("", {}), nullptr}) {
        EXPECT_THROW(make(column), ExceptionBase);
    }
}

} // namespace
