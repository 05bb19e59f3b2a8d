#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "base/OrderedSet.h"

namespace tarvix {
namespace {

// Equal by number alone.
struct Labelled {
    int number = 0;
    std::string label;
    friend bool operator==(const Labelled& a, const Labelled& b) { return a.number == b.number; }
};
struct HashOfLabelled {
    std::size_t operator()(const Labelled& labelled) const { return std::hash<int>{}(labelled.number); }
};

template <class Set>
std::vector<typename Set::value_type> listed(const Set& set) {
    return {set.begin(), set.end()};
}

using Ints = std::vector<int>;

TEST(OrderedSet, InsertionOrderIsIterationOrder) {
    const OrderedSet<int> set = {3, 1, 2};
    EXPECT_EQ(listed(set), (Ints{3, 1, 2}));
    EXPECT_EQ(set.front(), 3);
    EXPECT_EQ(set.back(), 2);
    EXPECT_EQ(set[1], 1);
    EXPECT_EQ(set.size(), 3u);
}

TEST(OrderedSet, TheFirstOfTwoEqualElementsStays) {
    OrderedSet<Labelled, HashOfLabelled> set;
    EXPECT_TRUE(set.insert({1, "first"}));
    EXPECT_FALSE(set.insert({1, "second"}));
    ASSERT_EQ(set.size(), 1u);
    EXPECT_EQ(set.front().label, "first");
}

TEST(OrderedSet, AUnionAppendsTheNewElementsInTheirOrder) {
    OrderedSet<int> set = {5, 1};
    set.unite({7, 5, 2, 1, 9});
    EXPECT_EQ(listed(set), (Ints{5, 1, 7, 2, 9}));
    set.unite({});
    EXPECT_EQ(listed(set), (Ints{5, 1, 7, 2, 9}));
    set.unite(set);
    EXPECT_EQ(listed(set), (Ints{5, 1, 7, 2, 9}));
}

TEST(OrderedSet, AUnionWithAnEmptySetTakesTheOtherAsItIs) {
    const OrderedSet<int> other = {2, 1};
    OrderedSet<int> set;
    set.unite(other);
    EXPECT_EQ(set, other);
    EXPECT_EQ(set.stamp(), other.stamp());
}

TEST(OrderedSet, AUnionWithASetThatIsNotNeededAnyMoreIsTheSameAndEmptiesIt) {
    OrderedSet<std::string> set = {"a", "b"};
    OrderedSet<std::string> other = {"c", "a", "d"};
    set.unite(std::move(other));
    EXPECT_EQ(listed(set), (std::vector<std::string>{"a", "b", "c", "d"}));
    EXPECT_TRUE(other.empty());
    EXPECT_EQ(other.stamp(), 0u);
    EXPECT_TRUE(other.insert("e"));
    OrderedSet<std::string> empty;
    empty.unite(std::move(other));
    EXPECT_EQ(listed(empty), (std::vector<std::string>{"e"}));
    EXPECT_TRUE(other.empty());
    set.unite(OrderedSet<std::string>());
    EXPECT_EQ(set.size(), 4u);
}

TEST(OrderedSet, AUnionTakesNothingFromThoseWhoShareWithTheOtherSet) {
    const OrderedSet<std::string> original = {"a text that is long enough to be moved", "b", "another such long text"};
    OrderedSet<std::string> some = original.subset(std::array<std::uint32_t, 2>{2, 0});
    OrderedSet<std::string> set = {"x"};
    set.unite(std::move(some));
    EXPECT_EQ(listed(set), (std::vector<std::string>{"x", original[2], original[0]}));
    EXPECT_EQ(original.front(), "a text that is long enough to be moved");
    EXPECT_EQ(original.back(), "another such long text");
}

TEST(OrderedSet, AUnionWithTheRestOfASetTakesOnlyWhatIsInIt) {
    OrderedSet<std::string> some =
        OrderedSet<std::string>{"a", "b", "c"}.subset(std::array<std::uint32_t, 2>{2, 0});  // nobody else has the rest
    OrderedSet<std::string> set = {"x"};
    set.unite(std::move(some));
    EXPECT_EQ(listed(set), (std::vector<std::string>{"x", "c", "a"}));
}

TEST(OrderedSet, AnEmptySetHoldsNothing) {
    const OrderedSet<int> set;
    EXPECT_TRUE(set.empty());
    EXPECT_FALSE(set.contains(0));
    EXPECT_EQ(set.begin(), set.end());
    EXPECT_EQ(set.stamp(), 0u);
    EXPECT_EQ(set, OrderedSet<int>());
}

TEST(OrderedSet, WhatIsNotEqualToItselfIsNeverFound) {
    const double notANumber = std::numeric_limits<double>::quiet_NaN();
    OrderedSet<double> set;
    for (int i = 0; i < 40; ++i) EXPECT_TRUE(set.insert(notANumber));
    EXPECT_EQ(set.size(), 40u);
    EXPECT_FALSE(set.contains(notANumber));
    EXPECT_TRUE(set.insert(1));
    EXPECT_TRUE(set.contains(1));
    const OrderedSet<double> some = set.subset(std::array<std::uint32_t, 3>{0, 39, 40});
    EXPECT_EQ(some.size(), 3u);
    EXPECT_TRUE(some.contains(1));
}

TEST(OrderedSet, TwoSetsAreEqualWithTheSameElementsInTheSameOrder) {
    EXPECT_EQ((OrderedSet<int>{1, 2}), (OrderedSet<int>{1, 2, 1}));
    EXPECT_FALSE((OrderedSet<int>{1, 2}) == (OrderedSet<int>{2, 1}));
    EXPECT_FALSE((OrderedSet<int>{1, 2}) == (OrderedSet<int>{1}));
}

TEST(OrderedSet, ACopyKeepsTheStampAndEveryChangeTakesANewOne) {
    OrderedSet<int> set = {1, 2};
    const OrderedSet<int> copy = set;
    EXPECT_EQ(copy.stamp(), set.stamp());
    EXPECT_FALSE(set.insert(2));
    EXPECT_EQ(copy.stamp(), set.stamp());
    set.insert(3);
    EXPECT_NE(copy.stamp(), set.stamp());
    EXPECT_NE((OrderedSet<int>{1, 2}).stamp(), copy.stamp());
    set.clear();
    EXPECT_EQ(set.stamp(), 0u);
    EXPECT_TRUE(set.empty());
}

TEST(OrderedSet, ACopyDoesNotSeeLaterChangesOfItsOriginal) {
    OrderedSet<std::string> original = {"a", "b"};
    OrderedSet<std::string> copy = original;
    original.insert("c");
    copy.insert("d");
    EXPECT_EQ(listed(original), (std::vector<std::string>{"a", "b", "c"}));
    EXPECT_EQ(listed(copy), (std::vector<std::string>{"a", "b", "d"}));
    EXPECT_FALSE(copy.contains("c"));
    EXPECT_FALSE(original.contains("d"));
}

TEST(OrderedSet, ASubsetHasTheElementsAtThePositions) {
    const OrderedSet<int> set = {10, 11, 12, 13};
    const OrderedSet<int> some = set.subset(std::array<std::uint32_t, 2>{3, 1});
    EXPECT_EQ(listed(some), (Ints{13, 11}));
    EXPECT_TRUE(some.contains(11));
    EXPECT_FALSE(some.contains(10));
    EXPECT_NE(some.stamp(), set.stamp());
    EXPECT_TRUE(set.subset({}).empty());
    EXPECT_EQ(set.subset({}).stamp(), 0u);
}

TEST(OrderedSet, ASubsetOutlivesAndOutgrowsItsOriginal) {
    OrderedSet<std::string> some;
    {
        const OrderedSet<std::string> set = {"a", "b", "c", "d"};
        some = set.subset(std::array<std::uint32_t, 2>{1, 3});
        some.insert("e");  // while the elements are shared
        EXPECT_EQ(listed(set), (std::vector<std::string>{"a", "b", "c", "d"}));
    }
    EXPECT_TRUE(some.insert("a"));
    EXPECT_FALSE(some.insert("d"));
    EXPECT_EQ(listed(some), (std::vector<std::string>{"b", "d", "e", "a"}));
    OrderedSet<std::string> last = OrderedSet<std::string>{"x", "y"}.subset(std::array<std::uint32_t, 1>{1});
    EXPECT_TRUE(last.insert("x"));  // the original is gone, its element isn't one of ours
    EXPECT_EQ(listed(last), (std::vector<std::string>{"y", "x"}));
    EXPECT_EQ(listed(last.subset(std::array<std::uint32_t, 1>{1})), (std::vector<std::string>{"x"}));
}

TEST(OrderedSet, ItsIteratorsAreRandomAccess) {
    const OrderedSet<int> set = {1, 3, 5, 7};
    EXPECT_EQ(set.end() - set.begin(), 4);
    EXPECT_EQ(*(set.begin() + 2), 5);
    EXPECT_EQ(set.begin()[3], 7);
    EXPECT_TRUE(set.begin() < set.end());
    EXPECT_EQ(*std::lower_bound(set.begin(), set.end(), 4), 5);
}

// Against a list searched from the front, over random insertions, copies, unions and subsets.
TEST(OrderedSet, BehavesLikeAListWithoutDuplicates) {
    std::mt19937 random(20260721);
    const auto below = [&](int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(random); };
    OrderedSet<int> set;
    Ints list;
    std::vector<OrderedSet<int>> kept;
    std::vector<Ints> keptLists;
    for (int step = 0; step < 6000; ++step) {
        const int what = below(100);
        if (what < 90) {
            const int number = below(1000);
            const bool isNew = std::find(list.begin(), list.end(), number) == list.end();
            ASSERT_EQ(set.contains(number), !isNew) << "step " << step;
            ASSERT_EQ(set.insert(number), isNew) << "step " << step;
            if (isNew) list.push_back(number);
        } else if (what < 94) {
            kept.push_back(set);
            keptLists.push_back(list);
        } else if (what < 96 && !kept.empty()) {
            const auto other = static_cast<std::size_t>(below(static_cast<int>(kept.size())));
            set.unite(kept[other]);
            for (const int number : keptLists[other])
                if (std::find(list.begin(), list.end(), number) == list.end()) list.push_back(number);
        } else if (what == 96) {
            std::vector<std::uint32_t> positions;
            Ints some;
            for (std::uint32_t i = 0; i < list.size(); ++i)
                if (below(2) == 0) {
                    positions.push_back(i);
                    some.push_back(list[i]);
                }
            set = set.subset(positions);
            list = some;
        }
    }
    EXPECT_EQ(listed(set), list);
    for (std::size_t i = 0; i < kept.size(); ++i) ASSERT_EQ(listed(kept[i]), keptLists[i]);
}

TEST(OrderedSet, SharingSetsCanBeChangedOnDifferentThreads) {
    OrderedSet<std::string> mine;
    for (int i = 0; i < 1000; ++i) mine.insert(std::to_string(i));
    OrderedSet<std::string> theirs = mine;
    std::thread other([theirs = std::move(theirs)]() mutable {
        for (int i = 1000; i < 2000; ++i) theirs.insert(std::to_string(i));
        EXPECT_EQ(theirs.size(), 2000u);
    });
    for (int i = 1000; i < 2000; ++i) mine.insert("mine " + std::to_string(i));
    other.join();
    EXPECT_EQ(mine.size(), 2000u);
    EXPECT_FALSE(mine.contains("1000"));
}

}  // namespace
}  // namespace tarvix
