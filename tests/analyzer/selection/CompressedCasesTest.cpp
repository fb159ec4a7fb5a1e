#include <analyzer/selection/CompressedCases.h>

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <set>

namespace {

using analyzer::CompressedCases;
using Cases = std::set<unsigned long long>;

constexpr unsigned long long largest = std::numeric_limits<unsigned long long>::max();

TEST(CompressedCasesTest, GivesBackWhatItWasMadeFrom)
{
    const Cases samples[] = {
        {},
        {0},
        {largest},
        {0, largest},
        {1, 2, 3},
        {largest - 2, largest - 1, largest},
        {0, 1, largest - 1, largest},
        {5, 7, 9, 11, 13, 15, 68, 70, 72},
        {largest - 64, largest - 62, largest - 60, largest},
        {10, 73},
        {10, 74},
        {10, 12, 14, 16, 18, 20, 22, 137},
        {10, 12, 14, 16, 18, 20, 22, 138},
    };

    for (const Cases& sample : samples) {
        const CompressedCases cases(sample);
        EXPECT_EQ(cases.toSet(), sample);
        EXPECT_EQ(cases.size(), sample.size());
        for (const Cases& other : samples) {
            EXPECT_EQ(cases == CompressedCases(other), sample == other);
        }
    }
    EXPECT_EQ(CompressedCases(), CompressedCases(Cases()));
}

TEST(CompressedCasesTest, GivesBackRandomSets)
{
    std::mt19937_64 random(7);
    for (int round = 0; round < 300; ++round) {
        SCOPED_TRACE(round);
        // Runs and gaps from dense to astronomical, from anywhere.
        const auto below = [&random](unsigned long long end) { return random() % end; };
        const unsigned long long gapBits = 1 + below(round % 3 == 0 ? 50 : 8);
        const unsigned long long maxRun = 1 + below(round % 2 == 0 ? 2 : 200);
        Cases sample;
        unsigned long long id = round % 5 == 0 ? largest - below(2000) : below(5000);
        for (unsigned long long run = below(300); run > 0; --run) {
            for (unsigned long long left = 1 + below(maxRun); left > 0; --left) {
                sample.insert(id++); // IDs behind the largest begin at 0 again
            }
            id += below(1ULL << gapBits);
        }

        const CompressedCases cases(sample);

        EXPECT_EQ(cases.toSet(), sample);
        EXPECT_EQ(cases.size(), sample.size());
    }
}

TEST(CompressedCasesTest, TakesLittleMemory)
{
    constexpr unsigned long long caseCount = 1000000;
    const auto everyNth = [](unsigned long long step) {
        Cases result;
        for (unsigned long long id = 1; id <= caseCount; id += step) {
            result.insert(result.end(), id);
        }
        return CompressedCases(result).byteCount() - sizeof(CompressedCases);
    };

    EXPECT_EQ(everyNth(1), 16U) << "one range";
    EXPECT_LE(everyNth(2), 125000U);
    EXPECT_LE(everyNth(64), 125000U);
    EXPECT_EQ(everyNth(1000), 16000U) << "a thousand ranges";
    EXPECT_EQ(CompressedCases({0, largest}).byteCount() - sizeof(CompressedCases), 32U);
}

} // namespace
