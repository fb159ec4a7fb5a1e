#include <dataviews/platform/selection/CaseSet.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <limits>
#include <random>
#include <set>
#include <vector>

namespace {

using Cases = std::set<unsigned long long>;

constexpr unsigned long long largest = std::numeric_limits<unsigned long long>::max();

TEST(CaseSetTest, GivesBackWhatItWasMadeFrom)
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
        const CaseSet cases(sample);
        EXPECT_EQ(cases.toSet(), sample);
        EXPECT_EQ(cases.size(), sample.size());
        for (const Cases& other : samples) {
            EXPECT_EQ(cases == CaseSet(other), sample == other);
        }
    }
    EXPECT_EQ(CaseSet(), CaseSet(Cases()));
}

/// Runs and gaps from dense to astronomical, from anywhere.
Cases randomCases(std::mt19937_64& random, int round)
{
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
    return sample;
}

TEST(CaseSetTest, GivesBackRandomSets)
{
    std::mt19937_64 random(7);
    for (int round = 0; round < 60; ++round) {
        SCOPED_TRACE(round);
        const Cases sample = randomCases(random, round);

        const CaseSet cases(sample);

        EXPECT_EQ(cases.toSet(), sample);
        EXPECT_EQ(cases.size(), sample.size());
        EXPECT_EQ(CaseSet::ofSorted({sample.begin(), sample.end()}), cases);
        if (!sample.empty()) {
            EXPECT_EQ(cases.smallest(), *sample.begin());
            EXPECT_EQ(cases.largest(), *sample.rbegin());
        }
    }
}

TEST(CaseSetTest, CombinesAsSetsDo)
{
    std::mt19937_64 random(8);
    for (int round = 0; round < 60; ++round) {
        SCOPED_TRACE(round);
        const Cases left = randomCases(random, round);
        const Cases right = randomCases(random, round % 7);
        Cases united;
        Cases different;
        std::set_union(
            left.begin(),
            left.end(),
            right.begin(),
            right.end(),
            std::inserter(united, united.end()));
        std::set_symmetric_difference(
            left.begin(),
            left.end(),
            right.begin(),
            right.end(),
            std::inserter(different, different.end()));
        const CaseSet leftCases(left);
        const CaseSet rightCases(right);

        EXPECT_EQ(CaseSet::united(leftCases, rightCases), CaseSet(united));
        EXPECT_EQ(CaseSet::symmetricDifference(leftCases, rightCases), CaseSet(different));
        EXPECT_TRUE(CaseSet(united).includes(leftCases));
        EXPECT_EQ(
            leftCases.includes(rightCases),
            std::includes(left.begin(), left.end(), right.begin(), right.end()));
    }
}

TEST(CaseSetTest, TellsOfPartsAsASetDoes)
{
    std::mt19937_64 random(9);
    for (int round = 0; round < 60; ++round) {
        SCOPED_TRACE(round);
        const Cases sample = randomCases(random, round);
        const CaseSet cases(sample);
        // Windows that begin and end before, in and behind the set.
        const unsigned long long middle = sample.empty() ? 100 : *sample.begin();
        const unsigned long long first = middle - random() % 300 + random() % 600;
        std::vector<CaseSet::Word> words(random() % 40 + 1);
        const unsigned long long lastBit = words.size() * 64 - 1;
        Cases inWindow;
        for (const unsigned long long id : sample) {
            if (id >= first && id - first <= lastBit) {
                inWindow.insert(id);
            }
        }

        cases.addTo(words, first);

        EXPECT_EQ(CaseSet::ofBits(first, words).toSet(), inWindow);
        if (first <= largest - lastBit) {
            EXPECT_EQ(cases.countBetween(first, first + lastBit), inWindow.size());
        }
        for (int offset = -3; offset < 700; ++offset) {
            const unsigned long long id = first + static_cast<unsigned long long>(offset);
            ASSERT_EQ(cases.contains(id), sample.count(id) != 0) << id;
        }
    }
}

TEST(CaseSetTest, TakesLittleMemory)
{
    constexpr unsigned long long caseCount = 1000000;
    const auto everyNth = [](unsigned long long step) {
        Cases result;
        for (unsigned long long id = 1; id <= caseCount; id += step) {
            result.insert(result.end(), id);
        }
        return CaseSet(result).byteCount() - sizeof(CaseSet);
    };

    EXPECT_EQ(everyNth(1), 16U) << "one range";
    EXPECT_LE(everyNth(2), 125000U);
    EXPECT_LE(everyNth(64), 125000U);
    EXPECT_EQ(everyNth(1000), 16000U) << "a thousand ranges";
    EXPECT_EQ(CaseSet({0, largest}).byteCount() - sizeof(CaseSet), 32U);
}

} // namespace
