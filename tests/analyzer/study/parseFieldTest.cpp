#include <analyzer/study/parseField.h>

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

using analyzer::FieldKind;
using analyzer::parseField;

TEST(parseFieldTest, TellsNumbersFromEverythingElse)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();

    struct Case
    {
        std::string text;
        FieldKind kind;
        double value = 0.0;
        char decimal = '.';
    };

    const std::vector<Case> cases = {
        {"0", FieldKind::Number, 0},
        {"-12", FieldKind::Number, -12},
        {"+7", FieldKind::Number, 7},
        {" 3.5\t", FieldKind::Number, 3.5},
        {".5", FieldKind::Number, 0.5},
        {"5.", FieldKind::Number, 5},
        {"1.16e-05", FieldKind::Number, 1.16e-05},
        {"1E3", FieldKind::Number, 1000},
        {"0.1", FieldKind::Number, 0.1},
        {"00.5", FieldKind::Number, 0.5},
        {"3,25", FieldKind::Number, 3.25, ','},
        {"-inf", FieldKind::Number, -infinity},
        {"Infinity", FieldKind::Number, infinity},
        {"9007199254740992", FieldKind::Number, 9007199254740992.0},
        {"-9007199254740992", FieldKind::Number, -9007199254740992.0},
        {"9007199254740993", FieldKind::BeyondExact},
        {"-9007199254740993", FieldKind::BeyondExact},
        {"123456789012345678", FieldKind::BeyondExact},
        {"123456789012345678.5", FieldKind::Number, 123456789012345678.5},
        {"1e999", FieldKind::BeyondExact},
        {"03", FieldKind::LeadingZeros},
        {"-007", FieldKind::LeadingZeros},
        {"00", FieldKind::LeadingZeros},
        {"", FieldKind::Blank},
        {" \t", FieldKind::Blank},
        {"NaN", FieldKind::NaN},
        {"-nan", FieldKind::NaN},
        {"NA", FieldKind::MissingWord},
        {"null", FieldKind::MissingWord},
        {" - ", FieldKind::MissingWord},
        {"--", FieldKind::Text},
        {"+", FieldKind::Text},
        {".", FieldKind::Text},
        {"1e", FieldKind::Text},
        {"1.2.3", FieldKind::Text},
        {"1,5", FieldKind::Text},
        {"1.5", FieldKind::Text, 0, ','},
        {"12 kg", FieldKind::Text},
        {"0x10", FieldKind::Text},
        {"+-1", FieldKind::Text},
        {"N/A", FieldKind::Text},
    };
    for (const Case& expected : cases) {
        SCOPED_TRACE(expected.text);
        double value = 0.0;

        const FieldKind kind =
            parseField(expected.text.data(), expected.text.size(), expected.decimal, value);

        EXPECT_EQ(kind, expected.kind);
        if (kind == FieldKind::Number) {
            EXPECT_EQ(value, expected.value);
        }
    }
}
