#include "CaseTableTestData.h"

#include <analyzer/views/CaseTableOrder.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <random>

namespace analyzer {

namespace {

using caseTableTest::column;

bool isMissing(double value)
{
    return std::isnan(value);
}

bool isMissing(const std::string& value)
{
    return value.empty();
}

bool isMissing(int)
{
    return false;
}

template <class Value>
std::vector<int> expectedRows(const std::vector<Value>& values, Qt::SortOrder order)
{
    std::vector<int> rows(values.size());
    std::iota(rows.begin(), rows.end(), 0);
    std::stable_sort(rows.begin(), rows.end(), [&](int left, int right) {
        const Value& a = values[static_cast<std::size_t>(left)];
        const Value& b = values[static_cast<std::size_t>(right)];
        if (isMissing(a) || isMissing(b)) {
            return !isMissing(a) && isMissing(b);
        }
        return order == Qt::AscendingOrder ? a < b : b < a;
    });
    return rows;
}

template <class Array, class Value>
void expectSortedAsReference(const std::vector<Value>& values)
{
    const auto array = column<Array>("x", values);
    for (const Qt::SortOrder order : {Qt::AscendingOrder, Qt::DescendingOrder}) {
        SCOPED_TRACE(order == Qt::AscendingOrder ? "ascending" : "descending");
        const CaseTableOrder sorted = CaseTableOrder::sorted(*array, order);

        std::vector<int> rows;
        int wrongInverse = 0;
        for (int row = 0; row < static_cast<int>(values.size()); ++row) {
            rows.push_back(sorted.tableRow(row));
            wrongInverse += sorted.viewRow(rows.back()) == row ? 0 : 1;
        }
        EXPECT_TRUE(rows == expectedRows(values, order));
        EXPECT_EQ(wrongInverse, 0);
    }
}

// The largest is more than two of the blocks in which texts are sorted.
constexpr std::size_t sizes[] = {0, 1, 2, 63, 1000, 20001};

} // namespace

TEST(CaseTableOrderTest, RealsAreSortedStablyWithMissingOnesLast)
{
    using Limits = std::numeric_limits<double>;
    const std::vector<double> special{
        Limits::quiet_NaN(),
        -Limits::quiet_NaN(),
        Limits::infinity(),
        -Limits::infinity(),
        0.0,
        -0.0,
        Limits::denorm_min(),
        -Limits::denorm_min(),
        Limits::max(),
        Limits::lowest()};
    std::mt19937 random(1);
    for (const std::size_t size : sizes) {
        SCOPED_TRACE(size);
        std::vector<double> values;
        while (values.size() < size) {
            switch (random() % 3) {
            case 0:
                values.push_back(special[random() % special.size()]);
                break;
            case 1:
                values.push_back(static_cast<double>(random() % 20) - 10.0); // many equal ones
                break;
            default:
                values.push_back(std::ldexp(
                    static_cast<double>(random()) - 2e9, static_cast<int>(random() % 60)));
                break;
            }
        }
        expectSortedAsReference<vtkDoubleArray>(values);
    }
    expectSortedAsReference<vtkDoubleArray>(special);
    expectSortedAsReference<vtkDoubleArray>(std::vector<double>(100, Limits::quiet_NaN()));
}

TEST(CaseTableOrderTest, IntegersAreSortedBySign)
{
    std::mt19937 random(2);
    for (const std::size_t size : sizes) {
        SCOPED_TRACE(size);
        std::vector<int> values{
            0, -1, 1, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()};
        while (values.size() < size) {
            values.push_back(static_cast<int>(random() % 2001) - 1000);
        }
        expectSortedAsReference<vtkIntArray>(values);
    }
}

TEST(CaseTableOrderTest, TextsAreSortedByTheirBytes)
{
    const std::vector<std::string> beginnings{
        "",
        "a",
        "common beginning ",
        "\xC3\xA4",
        "\xF0\x9F\x98\x80",
        std::string("a\0", 2),
        std::string("a\0b", 3),
        "12345678"};
    std::mt19937 random(3);
    for (const std::size_t size : sizes) {
        SCOPED_TRACE(size);
        std::vector<std::string> values(beginnings);
        while (values.size() < size) {
            const std::string& beginning = beginnings[random() % beginnings.size()];
            values.push_back(
                random() % 2 == 0 ? beginning : beginning + std::to_string(random() % 5000));
        }
        expectSortedAsReference<vtkStringArray>(values);
    }
}

TEST(CaseTableOrderTest, ACancelledSortStillEnds)
{
    const std::atomic<bool> cancelled(true);

    const auto reals = column<vtkDoubleArray>("x", std::vector<double>(50000, 1.0));
    const auto texts = column<vtkStringArray>("x", std::vector<std::string>(50000, "text"));

    EXPECT_NO_THROW(
        static_cast<void>(CaseTableOrder::sorted(*reals, Qt::AscendingOrder, &cancelled)));
    EXPECT_NO_THROW(
        static_cast<void>(CaseTableOrder::sorted(*texts, Qt::AscendingOrder, &cancelled)));
}

} // namespace analyzer
