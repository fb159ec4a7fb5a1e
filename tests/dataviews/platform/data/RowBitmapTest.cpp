#include <dataviews/platform/data/RowBitmap.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace {

void expectSame(const RowBitmap& bitmap, const std::vector<bool>& expected)
{
    const std::size_t rows = expected.size();
    ASSERT_EQ(bitmap.rowCount(), rows);
    std::vector<std::size_t> set;
    std::size_t next = bitmap.next(0);
    for (std::size_t row = 0; row < rows; ++row) {
        ASSERT_EQ(bitmap.contains(row), expected[row]) << "row " << row;
        if (expected[row]) {
            set.push_back(row);
            ASSERT_EQ(next, row);
            next = bitmap.next(row + 1);
        }
    }
    EXPECT_EQ(next, rows);
    EXPECT_EQ(bitmap.count(), set.size());
    std::vector<std::size_t> visited;
    bitmap.forEach([&visited](std::size_t row) { visited.push_back(row); });
    EXPECT_EQ(visited, set) << "also fails on bits beyond the last row";
}

TEST(RowBitmapTest, BehavesAsAVectorOfBools)
{
    for (const std::size_t rows : {0, 1, 63, 64, 65, 128, 200, 1000}) {
        SCOPED_TRACE(rows);
        std::mt19937 random(static_cast<unsigned>(rows));
        const auto below = [&random](std::size_t end) {
            return std::uniform_int_distribution<std::size_t>(0, end - 1)(random);
        };
        RowBitmap bitmap(rows, true);
        std::vector<bool> expected(rows, true);
        expectSame(bitmap, expected);
        for (int step = 0; step < 200 && !HasFatalFailure(); ++step) {
            const bool value = below(2) == 0;
            switch (below(6)) {
            case 0:
                bitmap.invert();
                expected.flip();
                break;
            case 1:
                bitmap.fill(value);
                expected.assign(rows, value);
                break;
            case 2: {
                RowBitmap other(rows);
                for (std::size_t row = 0; row < rows; ++row) {
                    const bool carried = below(4) != 0;
                    other.set(row, carried);
                    expected[row] = expected[row] && carried;
                }
                bitmap.intersect(other);
                break;
            }
            case 3:
                if (rows > 0) {
                    const std::size_t row = below(rows);
                    bitmap.set(row, value);
                    expected[row] = value;
                }
                break;
            default: {
                const std::size_t first = below(rows + 1);
                const std::size_t end = below(rows + 1); // also before the first: nothing
                bitmap.setRange(first, end, value);
                for (std::size_t row = first; row < end; ++row) {
                    expected[row] = value;
                }
                break;
            }
            }
            expectSame(bitmap, expected);
        }
    }
}

TEST(RowBitmapTest, EqualsWithTheSameRowsAndTheSameLength)
{
    RowBitmap bitmap(10);
    bitmap.set(3);
    RowBitmap same(10);
    same.set(3);

    EXPECT_EQ(bitmap, same);
    EXPECT_NE(bitmap, RowBitmap(10));
    EXPECT_NE(RowBitmap(10), RowBitmap(11));
    EXPECT_EQ(RowBitmap(70, true).next(1000), 70U);
}

} // namespace
