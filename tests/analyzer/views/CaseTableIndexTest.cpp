#include "CaseTableTestData.h"

#include <analyzer/views/CaseTableIndex.h>

#include <dataviews/platform/property/ExceptionBase.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace analyzer {

namespace {

using caseTableTest::Cases;
using caseTableTest::column;
using caseTableTest::denseIDs;

/// The ways in which a table can number its cases.
std::vector<std::vector<int>> numberings()
{
    std::vector<int> everyThird;
    std::vector<int> shuffled = denseIDs(200);
    for (int id = 0; id < 300; id += 3) {
        everyThird.push_back(id);
    }
    std::shuffle(shuffled.begin(), shuffled.end(), std::mt19937(1));
    return {
        {},
        {1},
        {7},
        denseIDs(200),
        everyThird,
        shuffled,
        {2, 3, 1},
        {2147483647, 0},
        {5, 5, 9, 5}};
}

} // namespace

TEST(CaseTableIndexTest, FindsRowsAndCasesAsALoopDoes)
{
    std::mt19937 random(2);
    for (const std::vector<int>& ids : numberings()) {
        SCOPED_TRACE(testing::PrintToString(ids));
        const CaseTableIndex index(column<vtkIntArray>("Case ID", ids));
        Cases master{4000000000000ULL, 18446744073709551615ULL};
        for (unsigned long long id = 0; id < 320; ++id) {
            if (random() % 2 == 0) {
                master.insert(id);
            }
        }
        Cases shown;
        for (std::size_t row = 0; row < ids.size(); ++row) {
            shown.insert(index.caseID(row));
        }

        CaseSet unknown(Cases{99});
        const RowBitmap rows = index.rows(CaseSet(master), unknown);

        ASSERT_EQ(rows.rowCount(), ids.size());
        for (std::size_t row = 0; row < ids.size(); ++row) {
            EXPECT_EQ(rows.contains(row), master.count(index.caseID(row)) != 0) << row;
        }
        Cases expectedUnknown;
        std::set_difference(
            master.begin(),
            master.end(),
            shown.begin(),
            shown.end(),
            std::inserter(expectedUnknown, expectedUnknown.end()));
        EXPECT_EQ(unknown.toSet(), expectedUnknown);
        EXPECT_EQ(index.cases(rows, unknown).toSet(), master);
        for (unsigned long long id = 0; id < 320; ++id) {
            const auto place = std::find_if(ids.begin(), ids.end(), [id](int other) {
                return static_cast<unsigned>(other) == id;
            });
            const std::optional<std::size_t> row = index.row(id);
            ASSERT_EQ(row.has_value(), place != ids.end()) << id;
            EXPECT_TRUE(!row || *row == static_cast<std::size_t>(place - ids.begin())) << id;
        }
    }
}

TEST(CaseTableIndexTest, RefusesNegativeIDs)
{
    try {
        const CaseTableIndex index(column<vtkIntArray>("Case ID", std::vector<int>{1, -3}));
        FAIL() << "not refused";
    } catch (const ExceptionBase& error) {
        EXPECT_STREQ(error.what(), "The case ID -3 in row 1 of the table is negative.");
    }
}

} // namespace analyzer
