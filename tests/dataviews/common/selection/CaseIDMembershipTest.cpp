#include <dataviews/common/selection/CaseIDMembership.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace {

using Cases = std::set<unsigned long long>;
using Key = CaseIDMembership::Key;

/// The ID that a record table with this key holds.
unsigned long long caseID(Key key)
{
    return static_cast<unsigned long long>(static_cast<long long>(static_cast<std::int32_t>(key)));
}

/// Compares with the set for its own keys, their neighbours, the ends of words and of the range, and random keys.
void expectSameMembers(const CaseIDMembership& membership, const Cases& cases, std::mt19937& random)
{
    std::vector<Key> keys = {0, 1, 63, 64, 0x7fffffff, 0x80000000, 0xffffffff};
    for (const unsigned long long id : cases) {
        for (const Key away : {0U, 1U, ~0U, 62U, 64U, ~0U - 61U, ~0U - 63U, 0x80000000U}) {
            keys.push_back(static_cast<Key>(id) + away);
        }
    }
    for (int i = 0; i < 200; ++i) {
        keys.push_back(static_cast<Key>(random()));
    }
    for (const Key key : keys) {
        ASSERT_EQ(membership.contains(key), cases.count(caseID(key)) == 1) << key;
        if (membership.isBitmap()) {
            std::uint64_t members = 0;
            for (Key bit = 0; bit < 64; ++bit) {
                members |= std::uint64_t(cases.count(caseID(key + bit))) << bit;
            }
            ASSERT_EQ(membership.membersFrom(key), members) << key;
        }
    }
}

TEST(CaseIDMembershipTest, HasTheMembersOfRandomSets)
{
    struct Shape
    {
        const char* name;
        unsigned long long first; ///< of the whole range of IDs, wrapping
        unsigned long long span;
        bool isBitmap; ///< however few members there are
    };

    const Shape shapes[] = {
        {"close together", 1000, 5000, true},
        {"around zero", 0ULL - 1000, 2000, false},
        {"negative", 0ULL - 100000, 99999, true},
        {"around the largest 32-bit number", 0x7fffff00, 0x200, true},
        {"around the smallest 32-bit number", 0xffffffff7fffff00, 0x200, true},
        {"wide", 0, 0x7fffffff, false},
        {"all that tables hold", 0xffffffff80000000, 0xffffffff, false},
        {"anything", 0, ~0ULL, false},
    };
    std::mt19937_64 random(1);
    std::mt19937 probes(2);

    for (const Shape& shape : shapes) {
        for (const int size : {2, 3, 64, 1000}) {
            SCOPED_TRACE(std::string(shape.name) + ", " + std::to_string(size));
            Cases cases;
            for (int i = 0; i < size; ++i) {
                const unsigned long long offset =
                    shape.span == ~0ULL ? random() : random() % (shape.span + 1);
                cases.insert(shape.first + offset);
            }

            const CaseIDMembership membership(cases);

            ASSERT_NO_FATAL_FAILURE(expectSameMembers(membership, cases, probes));
            if (shape.isBitmap) {
                EXPECT_EQ(membership.isBitmap(), !membership.isEmpty());
            } else if (size == 1000 && shape.span != ~0ULL) {
                EXPECT_FALSE(membership.isBitmap());
            }
        }
    }
}

TEST(CaseIDMembershipTest, IDsThatNoTableHoldsAreMembersOfNothing)
{
    // The low 32 bits of each would be a key.
    const Cases unheld = {
        0x80000000, 0xffffffff, 0x100000000, 0x100000005, 0x7fffffffffffffff, 0xffffffff7fffffff};

    const CaseIDMembership none(unheld);
    EXPECT_TRUE(none.isEmpty());
    EXPECT_FALSE(none.isSingle());
    for (const unsigned long long id : unheld) {
        EXPECT_FALSE(none.contains(static_cast<Key>(id))) << id;
    }

    Cases withOne = unheld;
    withOne.insert(0xffffffffffffff00); // -256
    const CaseIDMembership one(withOne);
    EXPECT_TRUE(one.isSingle());
    EXPECT_EQ(one.singleKey(), 0xffffff00);
    EXPECT_TRUE(one.contains(0xffffff00));
    EXPECT_FALSE(one.contains(5));

    EXPECT_TRUE(CaseIDMembership({}).isEmpty());
    EXPECT_FALSE(CaseIDMembership({}).contains(0));
}

TEST(CaseIDMembershipTest, SpendsABitmapOnlyOnMembersCloseEnoughTogether)
{
    // Two members as far apart as can be must not cost half a gigabyte.
    const CaseIDMembership sparse({0, 0xffffffffffffffff});
    EXPECT_TRUE(sparse.bits().empty());
    EXPECT_TRUE(sparse.contains(0));
    EXPECT_TRUE(sparse.contains(0xffffffff));
    EXPECT_FALSE(sparse.contains(1));

    // The last bit of a word, and the first of the next.
    for (const unsigned long long last : {63ULL, 64ULL, 127ULL, 128ULL}) {
        const CaseIDMembership close({7, 7 + last});
        EXPECT_TRUE(close.isBitmap());
        EXPECT_TRUE(close.contains(static_cast<Key>(7 + last)));
        EXPECT_FALSE(close.contains(static_cast<Key>(8 + last)));
        EXPECT_FALSE(close.contains(6));
    }
}

} // namespace
