#include <analyzer/study/Utf8Checker.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using analyzer::Utf8Checker;

TEST(Utf8CheckerTest, FindsTheFirstWrongByteWhereverPiecesEnd)
{
    constexpr int good = -1;
    constexpr int open = -2;

    struct Case
    {
        std::string text;
        int wrongAt;
    };

    const std::vector<Case> cases = {
        {"plain text, longer than a word", good},
        {"0123456\xc3\xa4"
         "89",
         good},
        {"\xe2\x82\xac\xf0\x9f\x98\x80\xed\x9f\xbf\xee\x80\x80\xf4\x8f\xbf\xbf", good},
        {"abc\xe4"
         "bc",
         4}, // Latin-1
        {"0123456789\x80", 10}, // begins with a continuation
        {"\xc0\xaf", 0}, // two spellings
        {"\xe0\x80\xaf", 1},
        {"\xf0\x8f\xbf\xbf", 1},
        {"\xed\xa0\x80", 1}, // surrogate
        {"\xf4\x90\x80\x80", 1}, // too large
        {"\xf5\x80\x80\x80", 0},
        {"a\xe2\x82", open},
    };
    for (const Case& expected : cases) {
        for (const std::size_t piece :
             {std::size_t{1}, std::size_t{2}, std::size_t{3}, std::size_t{100}}) {
            SCOPED_TRACE(
                testing::PrintToString(expected.text) + " in pieces of " + std::to_string(piece));
            Utf8Checker checker;
            int wrongAt = good;

            for (std::size_t place = 0; place < expected.text.size() && wrongAt == good;
                 place += piece) {
                const std::size_t size = std::min(piece, expected.text.size() - place);
                const std::size_t checked = checker.check(expected.text.data() + place, size);
                wrongAt = checked < size ? static_cast<int>(place + checked) : good;
            }
            if (wrongAt == good && !checker.isComplete()) {
                wrongAt = open;
            }

            EXPECT_EQ(wrongAt, expected.wrongAt);
        }
    }
}
