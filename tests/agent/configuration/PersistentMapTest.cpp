#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "agent/configuration/PersistentMap.h"

namespace QosAgent {
namespace {

struct Named {
    std::string name;
    int value;

    const std::string& key() const { return name; }
};
using Map = PersistentMap<Named>;
using Pairs = std::vector<std::pair<std::string, int>>;

void set(Map& map, const std::string& name, int value, std::uint64_t order = 0) {
    map.set(std::make_shared<const Named>(Named{name, value}), order);
}

Map holding(const Pairs& pairs) {
    Map map;
    for (const auto& [name, value] : pairs)
        set(map, name, value);
    return map;
}

Pairs ascending(const Map& map) {
    Pairs pairs;
    map.each([&](const auto& entry) { pairs.emplace_back(entry->name, entry->value); });
    return pairs;
}

Pairs inOrder(const Map& map) {
    Pairs pairs;
    for (const auto& entry : map.inOrder())
        pairs.emplace_back(entry->name, entry->value);
    return pairs;
}

/// `NAME: EARLIER LATER` of each difference, with `-` where there is none.
std::vector<std::string> differences(const Map& before, const Map& after) {
    std::vector<std::string> found;
    Map::eachDifference(before, after, [&](const auto& earlier, const auto& later) {
        const auto shown = [](const auto& entry) {
            return entry == nullptr ? std::string("-") : std::to_string(entry->value);
        };
        found.push_back((earlier != nullptr ? earlier : later)->name + ": " + shown(earlier) + ' ' +
                        shown(later));
    });
    return found;
}

TEST(PersistentMapTest, isEmptyAtFirst) {
    const Map map;
    EXPECT_TRUE(map.empty());
    EXPECT_EQ(map.size(), 0u);
    EXPECT_EQ(map.find("a"), nullptr);
    EXPECT_EQ(map.orderOf("a"), 0u);
    EXPECT_EQ(map.first(), nullptr);
    EXPECT_EQ(ascending(map), Pairs{});
}

TEST(PersistentMapTest, walksByKeyAndInTheOrderInWhichEntriesCame) {
    const Map map = holding({{"b", 1}, {"c", 2}, {"a", 3}});
    EXPECT_EQ(ascending(map), (Pairs{{"a", 3}, {"b", 1}, {"c", 2}}));
    EXPECT_EQ(inOrder(map), (Pairs{{"b", 1}, {"c", 2}, {"a", 3}}));
    EXPECT_EQ((*map.first())->name, "a");
}

TEST(PersistentMapTest, keepsThePlaceOfAnEntryThatIsReplaced) {
    Map map = holding({{"b", 1}, {"a", 2}});
    set(map, "b", 3);
    EXPECT_EQ(inOrder(map), (Pairs{{"b", 3}, {"a", 2}}));
    EXPECT_EQ(map.size(), 2u);
}

TEST(PersistentMapTest, putsAnEntryThatComesAgainBehindTheOthers) {
    Map map = holding({{"a", 1}, {"b", 2}});
    map.erase("a");
    set(map, "a", 3);
    EXPECT_EQ(inOrder(map), (Pairs{{"b", 2}, {"a", 3}}));
}

TEST(PersistentMapTest, takesThePlaceThatItIsGiven) {
    Map map;
    set(map, "late", 1, 20);
    set(map, "early", 2, 10);
    set(map, "next", 3);
    EXPECT_EQ(map.orderOf("early"), 10u);
    EXPECT_EQ(map.orderOf("next"), 21u);
    EXPECT_EQ(inOrder(map), (Pairs{{"early", 2}, {"late", 1}, {"next", 3}}));
    set(map, "early", 4, 30);
    EXPECT_EQ(inOrder(map), (Pairs{{"late", 1}, {"next", 3}, {"early", 4}}));
}

TEST(PersistentMapTest, leavesCopiesAsTheyAre) {
    Map map = holding({{"a", 1}, {"b", 2}});
    const Map copy = map;
    set(map, "a", 3);
    set(map, "c", 4);
    map.erase("b");
    EXPECT_EQ(ascending(copy), (Pairs{{"a", 1}, {"b", 2}}));
    EXPECT_EQ(ascending(map), (Pairs{{"a", 3}, {"c", 4}}));
}

TEST(PersistentMapTest, sharesEntriesWithCopies) {
    const Map map = holding({{"a", 1}, {"b", 2}});
    Map copy = map;
    set(copy, "b", 3);
    EXPECT_EQ(*map.find("a"), *copy.find("a"));
    EXPECT_NE(*map.find("b"), *copy.find("b"));
}

TEST(PersistentMapTest, tellsWhatDiffersInAscendingOrderOfKeys) {
    const Map before = holding({{"d", 4}, {"b", 2}, {"c", 3}, {"a", 1}});
    Map after = before;
    set(after, "b", 5);
    after.erase("c");
    set(after, "e", 6);
    EXPECT_EQ(differences(before, after), (std::vector<std::string>{"b: 2 5", "c: 3 -", "e: - 6"}));
    EXPECT_EQ(differences(after, before), (std::vector<std::string>{"b: 5 2", "c: - 3", "e: 6 -"}));
    EXPECT_EQ(differences(after, after), std::vector<std::string>{});
}

/// Two maps and two ordinary ones that went through the same changes.
struct Twins {
    Map map;
    std::map<std::string, int> model;

    void change(std::mt19937& random, int step) {
        const std::string name = std::to_string(random() % 400);
        if (random() % 5 < 3) {
            set(map, name, step);
            model[name] = step;
        } else {
            map.erase(name);
            model.erase(name);
        }
    }
};

TEST(PersistentMapTest, equalsAnOrdinaryMapAfterAnyChanges) {
    std::mt19937 random(11);
    Twins now;
    Twins before;
    for (int step = 1; step <= 6000; ++step) {
        if (random() % 64 == 0) before = now;
        now.change(random, step);
        ASSERT_EQ(now.map.size(), now.model.size());
        if (step % 100 != 0) continue;
        ASSERT_EQ(ascending(now.map), Pairs(now.model.begin(), now.model.end()));
        ASSERT_EQ(ascending(before.map), Pairs(before.model.begin(), before.model.end()));
        std::vector<std::string> expected;
        std::map<std::string, int> names = before.model;
        names.insert(now.model.begin(), now.model.end());
        for (const auto& [name, any] : names) {
            const auto shown = [&name = name](const Twins& twins) {
                const auto at = twins.model.find(name);
                return at == twins.model.end() ? std::string("-") : std::to_string(at->second);
            };
            if (shown(before) != shown(now))
                expected.push_back(name + ": " + shown(before) + ' ' + shown(now));
        }
        ASSERT_EQ(differences(before.map, now.map), expected);
    }
}

/// A key that counts how often it is compared.
struct Counting {
    int number;
    static inline std::size_t comparisons = 0;

    friend bool operator==(const Counting& left, const Counting& right) {
        ++comparisons;
        return left.number == right.number;
    }
    friend bool operator<(const Counting& left, const Counting& right) {
        ++comparisons;
        return left.number < right.number;
    }
};
struct Counted {
    Counting counting;
    const Counting& key() const { return counting; }
};

std::size_t comparisonsOf(const std::function<void()>& call) {
    const std::size_t before = Counting::comparisons;
    call();
    return Counting::comparisons - before;
}

TEST(PersistentMapTest, findsChangesAndComparesInAFewStepsHoweverManyThereAre) {
    constexpr int kSize = 1 << 15;
    PersistentMap<Counted> map;
    // The worst order for a tree that does not balance itself.
    for (int i = 0; i < kSize; ++i)
        map.set(std::make_shared<const Counted>(Counted{{i}}));
    // A treap of that size is, but for a chance of less than one in a million, no deeper than 90.
    constexpr std::size_t kMost = 2 * 90;
    EXPECT_LT(comparisonsOf([&] { map.find(Counting{kSize / 2}); }), kMost);
    PersistentMap<Counted> copy = map;
    EXPECT_LT(comparisonsOf([&] { copy.erase(Counting{kSize / 3}); }), 3 * kMost);
    EXPECT_LT(comparisonsOf([&] { copy.set(std::make_shared<const Counted>(Counted{{-1}})); }),
              4 * kMost);
    unsigned found = 0;
    EXPECT_LT(comparisonsOf([&] {
                  PersistentMap<Counted>::eachDifference(
                      map, copy, [&](const auto&, const auto&) { ++found; });
              }),
              8 * kMost);
    EXPECT_EQ(found, 2u);
}

}  // namespace
}  // namespace QosAgent
