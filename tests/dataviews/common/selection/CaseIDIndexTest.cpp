#include <dataviews/common/selection/CaseIDColumn.h>
#include <dataviews/common/selection/CaseIDIndex.h>

#include <dataviews/platform/selection/CaseSet.h>

#include <vtkDoubleArray.h>
#include <vtkIdTypeArray.h>
#include <vtkIntArray.h>
#include <vtkNew.h>
#include <vtkStringArray.h>

#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <limits>
#include <numeric>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace {

using Cases = std::set<unsigned long long>;
using Rows = std::vector<vtkIdType>;

Rows values(vtkIdTypeArray& array)
{
    EXPECT_EQ(array.GetNumberOfComponents(), 1);
    return {array.GetPointer(0), array.GetPointer(0) + array.GetNumberOfTuples()};
}

/// By the pass that remembers nothing.
Rows passedRows(vtkAbstractArray& column, const Cases& cases)
{
    return values(*CaseIDColumn(column).rowsOf(CaseIDMembership(cases)));
}

Rows indexedRows(vtkAbstractArray& column, const Cases& cases)
{
    return values(*CaseIDIndex::of(column)->rowsOf(CaseSet(cases)));
}

unsigned long long widened(int id)
{
    return static_cast<unsigned long long>(static_cast<long long>(id));
}

/// The ways in which a column can number its rows.
std::vector<std::pair<std::string, std::vector<int>>> numberings(std::mt19937& random)
{
    constexpr int count = 3000;
    std::vector<int> dense(count);
    std::iota(dense.begin(), dense.end(), 1);
    std::vector<int> late(count);
    std::iota(late.begin(), late.end(), 1000000);
    std::vector<int> acrossZero(count);
    std::iota(acrossZero.begin(), acrossZero.end(), -count / 2);
    std::vector<int> atTheEnd(count);
    for (int i = 0; i < count; ++i) {
        atTheEnd[static_cast<std::size_t>(i)] = std::numeric_limits<int>::max() - (count - 1 - i);
    }
    std::vector<int> shuffled = dense;
    std::shuffle(shuffled.begin(), shuffled.end(), random);
    std::vector<int> filtered;
    std::vector<int> repeated;
    std::vector<int> scattered;
    for (int row = 0; row < count; ++row) {
        if (random() % 3 == 0) {
            filtered.push_back(row);
        }
        repeated.push_back(static_cast<int>(random() % 500) - 250);
        scattered.push_back(static_cast<int>(random()));
    }
    return {
        {"none", {}},
        {"one", {7}},
        {"dense", dense},
        {"late", late},
        {"across zero", acrossZero},
        {"at the end of the numbers", atTheEnd},
        {"shuffled", shuffled},
        {"filtered", filtered},
        {"repeated", repeated},
        {"scattered", scattered}};
}

/// Selections of a few, some and many of \p ids, with some that are not there.
std::vector<Cases> selections(const std::vector<int>& ids, std::mt19937& random)
{
    std::vector<Cases> result = {{}};
    for (const std::size_t share : {1U, 2U, 10U, 100U, 1000U}) {
        Cases cases;
        for (const int id : ids) {
            if (random() % share == 0) {
                cases.insert(widened(id));
            }
        }
        result.push_back(cases);
        cases.insert({0, 501, 0x80000000, 0x100000001, 0xffffffff7fffffff});
        result.push_back(cases);
    }
    if (!ids.empty()) {
        result.push_back({widened(ids.front())});
        result.push_back({widened(ids.back())});
        result.push_back({widened(ids.back()), widened(ids.front()) + 4294967296U});
    }
    return result;
}

TEST(CaseIDIndexTest, FindsTheRowsThatAPassFinds)
{
    std::mt19937 random(1);
    for (int round = 0; round < 5; ++round) {
        for (const auto& [name, ids] : numberings(random)) {
            SCOPED_TRACE(name);
            vtkNew<vtkIntArray> integers;
            vtkNew<vtkDoubleArray> reals;
            vtkNew<vtkStringArray> texts;
            for (const int id : ids) {
                integers->InsertNextValue(id);
                reals->InsertNextValue(id);
                texts->InsertNextValue(std::to_string(id));
            }
            for (vtkAbstractArray* column :
                 std::initializer_list<vtkAbstractArray*>{integers, reals, texts}) {
                for (const Cases& cases : selections(ids, random)) {
                    const Rows expected = passedRows(*column, cases);
                    ASSERT_EQ(indexedRows(*column, cases), expected);
                    // And once more, for another plot.
                    const auto shared = boost::make_shared<const CaseSet>(cases);
                    const auto index = CaseIDIndex::of(*column);
                    ASSERT_EQ(values(*index->rowsOf(shared)), expected);
                    ASSERT_EQ(values(*index->rowsOf(shared)), expected);
                }
            }
        }
    }
}

TEST(CaseIDIndexTest, PlotsOfOneColumnShareAnIndexAndNoArray)
{
    vtkNew<vtkIntArray> column;
    column->InsertNextValue(5);
    column->InsertNextValue(3);

    const auto index = CaseIDIndex::of(*column);

    EXPECT_EQ(CaseIDIndex::of(*column), index);
    EXPECT_NE(index->rowsOf(CaseSet({3})), index->rowsOf(CaseSet({3})));
}

/// A change of a column, from 100 rows with the IDs 1 to 100 or with these in reverse.
struct Change
{
    const char* name;
    std::function<void(vtkIntArray&)> apply;
};

TEST(CaseIDIndexTest, IsNeverStale)
{
    const Change changes[] = {
        {"a value written and told",
         [](vtkIntArray& column) {
             column.SetValue(50, 7000);
             column.Modified();
         }},
        {"a value written through a pointer and told",
         [](vtkIntArray& column) {
             std::swap(column.GetPointer(0)[3], column.GetPointer(0)[97]);
             column.Modified();
         }},
        {"a row more", [](vtkIntArray& column) { column.InsertNextValue(7000); }},
        {"rows less", [](vtkIntArray& column) { column.SetNumberOfTuples(40); }},
        {"emptied and filled",
         [](vtkIntArray& column) {
             column.Initialize();
             for (int row = 0; row < 60; ++row) {
                 column.InsertNextValue(3 * row);
             }
         }},
        {"other components", [](vtkIntArray& column) { column.SetNumberOfComponents(2); }},
        {"other memory",
         [](vtkIntArray& column) {
             vtkNew<vtkIntArray> other;
             for (int row = 0; row < 100; ++row) {
                 other->InsertNextValue(2 * row);
             }
             column.ShallowCopy(other);
         }},
        {"a copy, told",
         [](vtkIntArray& column) {
             vtkNew<vtkIntArray> other;
             for (int row = 0; row < 100; ++row) {
                 other->InsertNextValue(7 * row);
             }
             column.DeepCopy(other);
             column.Modified();
         }},
    };
    const Cases wanted[] = {{1}, {2, 51, 98}, {6, 50, 99, 7000}, {2, 4, 6, 8, 10, 12, 14, 21, 100}};
    for (const Change& change : changes) {
        for (const bool isReversed : {false, true}) {
            SCOPED_TRACE(std::string(change.name) + (isReversed ? ", reversed" : ""));
            vtkNew<vtkIntArray> column;
            for (int row = 1; row <= 100; ++row) {
                column->InsertNextValue(isReversed ? 101 - row : row);
            }
            for (const Cases& cases : wanted) {
                ASSERT_EQ(indexedRows(*column, cases), passedRows(*column, cases));
            }
            const auto before = CaseIDIndex::of(*column);

            change.apply(*column);

            EXPECT_FALSE(before->isCurrent());
            for (const Cases& cases : wanted) {
                EXPECT_EQ(indexedRows(*column, cases), passedRows(*column, cases));
            }
        }
    }
}

TEST(CaseIDIndexTest, KnowsAColumnThatHasTheAddressOfOneThatIsGone)
{
    // More columns than are remembered, many of them at the same place in memory one after the other.
    for (int round = 0; round < 200; ++round) {
        vtkNew<vtkIntArray> column;
        column->SetNumberOfValues(100);
        for (int row = 0; row < 100; ++row) {
            column->SetValue(row, round % 2 == 0 ? row + round : 100 * row - round);
        }
        const Cases cases{static_cast<unsigned long long>(round), 100, 9900};
        ASSERT_EQ(indexedRows(*column, cases), passedRows(*column, cases)) << round;
    }
    const auto index = CaseIDIndex::of(*vtkSmartPointer<vtkIntArray>::New());
    EXPECT_FALSE(index->isCurrent()) << "its column is gone";
}

TEST(CaseIDIndexTest, ManyColumnsTakeTurns)
{
    std::vector<vtkSmartPointer<vtkIntArray>> columns;
    for (int number = 0; number < 30; ++number) {
        columns.push_back(vtkSmartPointer<vtkIntArray>::New());
        for (int row = 0; row < 50; ++row) {
            columns.back()->InsertNextValue((row * (number + 1)) % 53);
        }
    }
    std::mt19937 random(3);
    for (int round = 0; round < 500; ++round) {
        vtkIntArray& column = *columns[random() % columns.size()];
        const Cases cases{random() % 53, random() % 53};
        ASSERT_EQ(indexedRows(column, cases), passedRows(column, cases));
    }
}

} // namespace
