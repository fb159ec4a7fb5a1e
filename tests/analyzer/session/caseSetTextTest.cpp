#include <analyzer/session/SessionError.h>
#include <analyzer/session/caseSetText.h>

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace {

RowBitmap bitmap(std::size_t rowCount, const std::initializer_list<std::size_t>& rows)
{
    RowBitmap set(rowCount);
    for (const std::size_t row : rows) {
        set.set(row);
    }
    return set;
}

} // namespace

TEST(CaseSetTextTest, WritesRangesOfCasesCountedFromOne)
{
    EXPECT_EQ(analyzer::caseSetText(RowBitmap(9)), "");
    EXPECT_EQ(analyzer::caseSetText(RowBitmap(9, true)), "1-9");
    EXPECT_EQ(analyzer::caseSetText(bitmap(200, {0, 1, 2, 40, 64, 65, 199})), "1-3,41,65-66,200");
}

TEST(CaseSetTextTest, RandomSetsReadBackTheSameAndStaySmall)
{
    std::mt19937 random(5);
    for (const double share : {0.0, 0.001, 0.1, 0.5, 0.9, 1.0}) {
        for (const std::size_t count : {0U, 1U, 63U, 64U, 65U, 1000U, 20000U}) {
            RowBitmap rows(count);
            std::bernoulli_distribution isIn(share);
            for (std::size_t row = 0; row < count; ++row) {
                rows.set(row, isIn(random));
            }
            const std::string text = analyzer::caseSetText(rows);
            EXPECT_EQ(analyzer::parseCaseSet(text, count), rows) << text;
            EXPECT_LE(text.size(), count / 6 + 12);
        }
    }
}

TEST(CaseSetTextTest, RefusesWhatIsNoSetOfThoseCases)
{
    for (const char* text :
         {"0",
          "11",
          "3-2",
          "1-11",
          "1,,2",
          "1,",
          ",1",
          "-",
          "1-",
          "-4",
          "1 2",
          "a",
          "1.5",
          "+1",
          "99999999999999999999",
          "base64:!!!!",
          "base64:A",
          "base64:AQI",
          "base64:AAg="}) {
        EXPECT_THROW(static_cast<void>(analyzer::parseCaseSet(text, 10)), analyzer::SessionError)
            << text;
    }
    EXPECT_EQ(analyzer::parseCaseSet(" 1 , 3-4\n,10 ", 10), bitmap(10, {0, 2, 3, 9}));
    EXPECT_EQ(analyzer::parseCaseSet(" \n", 10), RowBitmap(10));
    EXPECT_EQ(analyzer::parseCaseSet("base64:AQI=", 10), bitmap(10, {0, 9}));
}
