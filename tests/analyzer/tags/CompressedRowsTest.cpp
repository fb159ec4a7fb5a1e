#include <analyzer/tags/CompressedRows.h>

#include <gtest/gtest.h>

#include <random>

using analyzer::CompressedRows;

namespace {

TEST(CompressedRowsTest, GivesAnyRowsBack)
{
    std::mt19937 random(1);
    for (const std::size_t rowCount : {0U, 1U, 63U, 64U, 65U, 1000U}) {
        for (const unsigned ofTen : {0U, 1U, 5U, 9U, 10U}) {
            SCOPED_TRACE(std::to_string(rowCount) + " rows, " + std::to_string(ofTen) + " of 10");
            RowBitmap rows(rowCount);
            for (std::size_t row = 0; row < rowCount; ++row) {
                rows.set(row, random() % 10 < ofTen);
            }

            const CompressedRows compressed(rows);

            EXPECT_EQ(compressed.toBitmap(), rows);
            EXPECT_EQ(compressed.size(), rows.count());
        }
    }
}

TEST(CompressedRowsTest, TakesLittleForFewRowsRunsAndNeighbours)
{
    constexpr std::size_t rowCount = 1000000;
    constexpr std::size_t little = 1000;
    RowBitmap few(rowCount);
    few.set(3);
    few.set(rowCount - 1);
    RowBitmap run(rowCount);
    run.setRange(1000, 900000);
    RowBitmap neighbours(rowCount);
    for (std::size_t row = 500000; row < 504000; row += 2) {
        neighbours.set(row);
    }

    for (const RowBitmap& rows : {few, run, neighbours, RowBitmap(rowCount, true)}) {
        const CompressedRows compressed(rows);

        EXPECT_LT(compressed.byteCount(), little);
        EXPECT_EQ(compressed.toBitmap(), rows);
    }
}

} // namespace
