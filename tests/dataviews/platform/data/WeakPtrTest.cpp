#include <dataviews/platform/data/WeakPtr.h>

#include <boost/make_shared.hpp>
#include <boost/unordered_set.hpp>

#include <gtest/gtest.h>

#include <set>
#include <type_traits>
#include <unordered_set>

namespace {

static_assert(std::is_same_v<WeakPtr<int>, WeakPtr<int, std::size_t>>);
static_assert(std::is_same_v<decltype(WeakPtr<int, unsigned>().hash()), unsigned>);

TEST(WeakPtrTest, LocksWhileTheObjectLives)
{
    auto object = boost::make_shared<int>(5);
    const WeakPtr<int> handle = object;
    const WeakPtr<int> nothing;

    EXPECT_EQ(*handle.lock(), 5);
    EXPECT_FALSE(handle.expired());
    EXPECT_FALSE(handle.isNull());
    EXPECT_EQ(nothing.lock(), nullptr);
    EXPECT_TRUE(nothing.isNull());
    EXPECT_TRUE(WeakPtr<int>(boost::shared_ptr<int>()).isNull());
    EXPECT_EQ(nothing, WeakPtr<int>(boost::shared_ptr<int>()));
    object.reset();

    EXPECT_EQ(handle.lock(), nullptr);
    EXPECT_TRUE(handle.expired());
    EXPECT_FALSE(handle.isNull()) << "A handle of a dead object was not made from nothing.";
    EXPECT_NE(handle, nothing);
}

TEST(WeakPtrTest, KeepsItsPlaceInSetsAfterTheObjectHasDied)
{
    constexpr int count = 20;
    std::vector<boost::shared_ptr<int>> objects;
    std::vector<WeakPtr<int>> handles;
    for (int number = 0; number < count; ++number) {
        objects.push_back(boost::make_shared<int>(number));
        handles.emplace_back(objects.back());
    }
    const std::set<WeakPtr<int>> sorted(handles.begin(), handles.end());
    const std::unordered_set<WeakPtr<int>> hashed(handles.begin(), handles.end());
    const boost::unordered_set<WeakPtr<int>> boostHashed(handles.begin(), handles.end());
    const std::vector<WeakPtr<int>> order(sorted.begin(), sorted.end());
    ASSERT_EQ(sorted.size(), handles.size());

    objects.clear();

    for (const WeakPtr<int>& handle : handles) {
        EXPECT_EQ(sorted.count(handle), 1U);
        EXPECT_EQ(hashed.count(handle), 1U);
        EXPECT_EQ(boostHashed.count(handle), 1U);
        EXPECT_FALSE(handle < handle);
    }
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

TEST(WeakPtrTest, LaterObjectAtTheSameAddressIsAnother)
{
    int place = 0;
    const auto leave = [](int*) {};
    auto first = boost::shared_ptr<int>(&place, leave);
    const WeakPtr<int> former = first;
    const std::size_t hash = former.hash();
    first.reset();

    const auto second = boost::shared_ptr<int>(&place, leave);
    const WeakPtr<int> latter = second;

    EXPECT_NE(former, latter);
    EXPECT_NE(former < latter, latter < former);
    EXPECT_EQ(former.lock(), nullptr);
    EXPECT_EQ(former.hash(), hash);
    EXPECT_EQ((std::unordered_set<WeakPtr<int>>{former, latter}.size()), 2U);
}

TEST(WeakPtrTest, EqualHandlesHashAlikeWhateverPointerTheyAreMadeFrom)
{
    struct First
    {
        int number = 1;
    };

    struct Second
    {
        int number = 2;
    };

    struct Both
        : First
        , Second
    {};

    const auto object = boost::make_shared<Both>();
    const WeakPtr<Second> direct = object;
    const WeakPtr<Second> detour = boost::shared_ptr<Second>(object);

    ASSERT_EQ(direct, detour);
    EXPECT_EQ(direct.hash(), detour.hash());
}

} // namespace
