#include <dataviews/common/selection/CaseIDColumn.h>
#include <dataviews/common/selection/CaseIDIndex.h>

#include <vtkBitArray.h>
#include <vtkCharArray.h>
#include <vtkDoubleArray.h>
#include <vtkFloatArray.h>
#include <vtkIdTypeArray.h>
#include <vtkIntArray.h>
#include <vtkLongArray.h>
#include <vtkLongLongArray.h>
#include <vtkNew.h>
#include <vtkSOADataArrayTemplate.h>
#include <vtkShortArray.h>
#include <vtkSignedCharArray.h>
#include <vtkStringArray.h>
#include <vtkUnsignedCharArray.h>
#include <vtkUnsignedIntArray.h>
#include <vtkUnsignedLongArray.h>
#include <vtkUnsignedLongLongArray.h>
#include <vtkUnsignedShortArray.h>
#include <vtkVariant.h>
#include <vtkVariantArray.h>

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <set>
#include <type_traits>
#include <vector>

namespace {

using Cases = std::set<unsigned long long>;
using Key = CaseIDMembership::Key;

/// What a chart's selection should read in \p row.
unsigned long long expectedID(vtkAbstractArray& column, vtkIdType row)
{
    return static_cast<unsigned long long>(
        static_cast<long long>(column.GetVariantValue(row).ToInt()));
}

std::vector<vtkIdType> values(vtkIdTypeArray& array)
{
    EXPECT_EQ(array.GetNumberOfComponents(), 1);
    return {array.GetPointer(0), array.GetPointer(0) + array.GetNumberOfTuples()};
}

/// Compares every way of reading \p column with one variant a row.
void expectLikeVariants(vtkAbstractArray& column)
{
    const CaseIDColumn ids(column);
    const vtkIdType rowCount = column.GetNumberOfTuples();
    ASSERT_GT(rowCount, 0);
    std::vector<Key> expectedKeys;
    Cases expectedSet;
    for (vtkIdType row = 0; row < rowCount; ++row) {
        const unsigned long long id = expectedID(column, row);
        ASSERT_EQ(ids.caseID(row), id) << row << ": " << column.GetVariantValue(row).ToString();
        expectedKeys.push_back(static_cast<Key>(id));
        expectedSet.insert(id);
    }

    std::vector<Key> keys = {77};
    ids.appendKeys(keys);
    ASSERT_EQ(keys.front(), 77U);
    ASSERT_EQ(std::vector<Key>(keys.begin() + 1, keys.end()), expectedKeys);
    ASSERT_EQ(CaseIDColumn::toCaseIDs(expectedKeys), expectedSet);
    ASSERT_EQ(CaseIDColumn::toCases(expectedKeys), CaseSet(expectedSet));

    // Some rows, last first and one twice.
    vtkNew<vtkIdTypeArray> rows;
    std::vector<Key> expectedSome = keys;
    for (const vtkIdType row : {rowCount - 1, vtkIdType(0), rowCount / 2, vtkIdType(0)}) {
        rows->InsertNextValue(row);
        expectedSome.push_back(expectedKeys[static_cast<std::size_t>(row)]);
    }
    ids.appendKeys(*rows, keys);
    ASSERT_EQ(keys, expectedSome);

    // Nothing, each ID alone, each beside a far one, the whole, and the whole with IDs that no column holds.
    std::vector<Cases> selections = {{}, expectedSet, expectedSet};
    selections.back().insert({0x80000000, 0x100000000, 0x1234567800000001});
    for (const unsigned long long id : expectedSet) {
        selections.push_back({id});
        selections.push_back({id, 0xffffffff80000001, 0x7ffffff0});
    }
    for (const Cases& selection : selections) {
        std::vector<vtkIdType> expectedRows;
        for (vtkIdType row = 0; row < rowCount; ++row) {
            if (selection.count(expectedID(column, row)) == 1) {
                expectedRows.push_back(row);
            }
        }
        ASSERT_EQ(values(*ids.rowsOf(CaseIDMembership(selection))), expectedRows);
        ASSERT_EQ(values(*CaseIDIndex::of(column)->rowsOf(CaseSet(selection))), expectedRows);
    }
}

/// Numbers at the ends of every type, as far as \p Value holds them.
template <class Value>
std::vector<Value> awkwardValues()
{
    using Limits = std::numeric_limits<Value>;
    std::vector<Value> result = {
        0, 1, 2, 7, Limits::max(), Limits::lowest(), Limits::min(), Limits::max() / 2};
    for (const double number :
         {-1.0,
          -2.0,
          -128.0,
          128.0,
          255.0,
          -32769.0,
          65535.0,
          2147483646.0,
          2147483647.0,
          2147483648.0,
          4294967295.0,
          4294967296.0,
          4294967297.0,
          -2147483647.0,
          -2147483648.0,
          -2147483649.0,
          -4294967297.0,
          1e18,
          -1e18}) {
        if (number >= static_cast<double>(Limits::lowest())
            && number < static_cast<double>(Limits::max())) {
            result.push_back(static_cast<Value>(number));
        }
    }
    if constexpr (std::is_floating_point_v<Value>) {
        for (const double number :
             {3.99,
              -3.99,
              -0.5,
              -0.0,
              2147483647.5,
              -2147483648.5,
              1e-300,
              Limits::infinity() * 1.0}) {
            result.push_back(static_cast<Value>(number));
        }
        result.push_back(-Limits::infinity());
        result.push_back(Limits::quiet_NaN());
    }
    return result;
}

template <class Array>
class CaseIDColumnTypedTest : public testing::Test
{};

using NumericArrays = testing::Types<
    vtkCharArray,
    vtkSignedCharArray,
    vtkUnsignedCharArray,
    vtkShortArray,
    vtkUnsignedShortArray,
    vtkIntArray,
    vtkUnsignedIntArray,
    vtkLongArray,
    vtkUnsignedLongArray,
    vtkLongLongArray,
    vtkUnsignedLongLongArray,
    vtkIdTypeArray,
    vtkFloatArray,
    vtkDoubleArray,
    vtkSOADataArrayTemplate<int>,
    vtkSOADataArrayTemplate<long long>,
    vtkSOADataArrayTemplate<float>,
    vtkSOADataArrayTemplate<double>>;
TYPED_TEST_SUITE(CaseIDColumnTypedTest, NumericArrays);

TYPED_TEST(CaseIDColumnTypedTest, ReadsWhatVariantsGive)
{
    using Value = typename TypeParam::ValueType;
    for (const int components : {1, 2}) {
        SCOPED_TRACE(components);
        vtkNew<TypeParam> column;
        column->SetNumberOfComponents(components);
        const std::vector<Value> numbers = awkwardValues<Value>();
        // Long enough for whole blocks of rows and a rest behind them; the awkward numbers in some blocks only.
        column->SetNumberOfTuples(3000);
        for (vtkIdType i = 0; i < 3000 * components; ++i) {
            const auto place = static_cast<std::size_t>(i);
            const bool isAwkward = place < numbers.size() || i > 2990;
            const Value value =
                isAwkward ? numbers[place % numbers.size()] : static_cast<Value>(place % 5);
            column->SetTypedComponent(i / components, static_cast<int>(i % components), value);
        }

        expectLikeVariants(*column);
    }
}

TEST(CaseIDColumnTest, ReadsTextsBitsAndVariantsAsVariantsGiveThem)
{
    vtkNew<vtkStringArray> texts;
    for (const char* text :
         {"5",
          " 12 ",
          "+4",
          "-7",
          "12abc",
          "3.7",
          "1e3",
          "",
          "3000000000",
          "-2147483648",
          "nan",
          "0x10"}) {
        texts->InsertNextValue(text);
    }
    vtkNew<vtkBitArray> bits;
    vtkNew<vtkVariantArray> variants;
    for (int i = 0; i < 70; ++i) {
        bits->InsertNextValue(i % 3 == 0);
    }
    for (const vtkVariant& variant :
         {vtkVariant(3),
          vtkVariant("4"),
          vtkVariant(-5.9),
          vtkVariant(5000000000LL),
          vtkVariant(),
          vtkVariant('5')}) {
        variants->InsertNextValue(variant);
    }

    expectLikeVariants(*texts);
    expectLikeVariants(*bits);
    expectLikeVariants(*variants);
    EXPECT_EQ(CaseIDColumn(*texts).caseID(3), 0ULL - 7);
}

/// Compares the rows with those of a look into the set for each.
void expectRowsOf(vtkIntArray& column, const Cases& selection)
{
    std::vector<vtkIdType> expected;
    for (vtkIdType row = 0; row < column.GetNumberOfTuples(); ++row) {
        if (selection.count(expectedID(column, row)) == 1) {
            expected.push_back(row);
        }
    }
    ASSERT_EQ(values(*CaseIDColumn(column).rowsOf(CaseIDMembership(selection))), expected);
}

TEST(CaseIDColumnTest, FindsTheRowsOfRandomSelections)
{
    std::mt19937 random(3);
    for (const int rowCount : {0, 1, 63, 64, 65, 1023, 1024, 1025, 2100}) {
        for (const unsigned span : {8U, 3000U, 0xffffffffU}) {
            SCOPED_TRACE(testing::Message() << rowCount << " rows, span " << span);
            vtkNew<vtkIntArray> column;
            Cases selection;
            for (int row = 0; row < rowCount; ++row) {
                column->InsertNextValue(static_cast<int>(static_cast<unsigned>(random()) % span));
                if (random() % 4 == 0) {
                    selection.insert(expectedID(*column, row));
                }
            }

            ASSERT_NO_FATAL_FAILURE(expectRowsOf(*column, selection));
        }
    }
}

TEST(CaseIDColumnTest, FindsTheRowsOfTablesWithIDsInOrderAndGapsInTheOrder)
{
    std::mt19937 random(4);
    for (const unsigned first : {0U, 1U, 1000U, 0xffffff00U, 0x7fffff80U, 0x80000000U}) {
        for (int round = 0; round < 30; ++round) {
            SCOPED_TRACE(testing::Message() << "from " << first << ", round " << round);
            vtkNew<vtkIntArray> column;
            unsigned id = first;
            for (int row = 0; row < 500; ++row) {
                column->InsertNextValue(static_cast<int>(id));
                // Most rounds have few gaps or none; a value that comes twice breaks the order too.
                id += random() % 200 < static_cast<unsigned>(round)
                    ? static_cast<unsigned>(random()) % 3
                    : 1;
            }
            // A run of cases that begins and ends anywhere, also beside the table, with holes.
            Cases selection;
            unsigned member = first + static_cast<unsigned>(random()) % 500 - 100;
            for (std::size_t count = random() % 700; count > 0; --count) {
                member += random() % 10 == 0 ? 2 : 1;
                selection.insert(static_cast<unsigned long long>(
                    static_cast<long long>(static_cast<int>(member))));
            }

            ASSERT_NO_FATAL_FAILURE(expectRowsOf(*column, selection));
        }
    }
}

TEST(CaseIDColumnTest, BringsIDsInOrderHoweverFarApart)
{
    std::mt19937 random(5);
    for (const unsigned span : {1U, 50U, 5000U, 0U}) {
        for (const unsigned first : {0U, 0xfffffff0U, 0x7ffffff0U}) {
            std::vector<Key> keys;
            Cases expected;
            for (int i = 0; i < 300; ++i) {
                const auto number = static_cast<Key>(random());
                keys.push_back(first + (span == 0 ? number : number % span));
                expected.insert(static_cast<unsigned long long>(
                    static_cast<long long>(static_cast<int>(keys.back()))));
            }

            EXPECT_EQ(CaseIDColumn::toCaseIDs(keys), expected) << first << ", span " << span;
        }
    }
    EXPECT_EQ(CaseIDColumn::toCaseIDs({}), Cases{});
}

} // namespace
