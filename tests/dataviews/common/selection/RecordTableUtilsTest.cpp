#include <dataviews/common/selection/RecordTableUtils.h>

#include <gtest/gtest.h>

#include <limits>

#include <tests/support/caseTable.h>

namespace {

using Cases = std::set<unsigned long long>;

TEST(RecordTableUtilsTest, ReadsColumnZeroWithEachCaseOnce)
{
    constexpr int lowest = std::numeric_limits<int>::min();
    const auto table = caseTable({9, 3, 9, -1, lowest, 3}, {100, 101, 102, 103, 104, 105});

    EXPECT_EQ(
        RecordTableUtils::caseIDs(*table), (Cases{3, 9, 0xffffffff80000000, 0xffffffffffffffff}));
    EXPECT_EQ(RecordTableUtils::caseIDAtRow(*table, 1), 3U);
    EXPECT_EQ(RecordTableUtils::caseIDAtRow(*table, 3), 0xffffffffffffffffU);
}

TEST(RecordTableUtilsTest, TablesWithoutRowsOrColumnsHoldNoCases)
{
    EXPECT_EQ(RecordTableUtils::caseIDs(*caseTable({})), Cases{});
    EXPECT_EQ(RecordTableUtils::caseIDs(*vtkSmartPointer<vtkTable>::New()), Cases{});
}

} // namespace
