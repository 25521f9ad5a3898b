#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <numeric>
#include <random>
#include <vector>

#include "platform/Orin/String.h"
#include "platform/Vex/OrderedMap.h"
#include "tests/support/Allocations.h"
#include "tests/support/Printers.h"

namespace Vex {
namespace {

using Map = OrderedMap<std::uint32_t, std::uint32_t, 17>;
using Keys = std::vector<std::uint32_t>;

/// More than several runs.
constexpr std::uint32_t kMany = 1'000;

Keys upTo(std::uint32_t count) {
    Keys keys(count);
    std::iota(keys.begin(), keys.end(), 1);
    return keys;
}

class OrderedMapTest : public ::testing::Test {
protected:
    void enter(std::uint32_t key) { map->enter(key, key * 10); }
    void enterAll(const Keys& keys) {
        for (const std::uint32_t key : keys)
            enter(key);
    }
    /// Enters a key while the n-th allocation fails.
    void enterFailing(std::uint32_t key, std::size_t nth) {
        try {
            const TestSupport::FailingAllocation failing(nth);
            enter(key);
        } catch (const std::bad_alloc&) {
        }
    }
    Keys walk(const std::function<void(std::uint32_t)>& act = [](std::uint32_t) {}) {
        Keys visited;
        for (auto at = map->begin(); !(at == Map::End()); ++at) {
            visited.push_back((*at).key);
            EXPECT_EQ((*at).value, visited.back() * 10);
            act(visited.back());
        }
        return visited;
    }
    Keys walkActingAt(std::uint32_t key, const std::function<void()>& act) {
        return walk([&](std::uint32_t at) {
            if (at == key) act();
        });
    }

    std::unique_ptr<Map> map = std::make_unique<Map>();
};

TEST_F(OrderedMapTest, beginsEmpty) {
    EXPECT_TRUE(map->empty());
    EXPECT_EQ(map->find(1U), nullptr);
    EXPECT_EQ(map->remove(1U), std::nullopt);
    EXPECT_EQ(walk(), Keys{});
}

TEST_F(OrderedMapTest, isWalkedAscendingWhenFilledAscending) {
    enterAll(upTo(kMany));
    EXPECT_EQ(walk(), upTo(kMany));
}

TEST_F(OrderedMapTest, isWalkedAscendingWhenFilledDescending) {
    Keys descending = upTo(kMany);
    std::reverse(descending.begin(), descending.end());
    enterAll(descending);
    EXPECT_EQ(walk(), upTo(kMany));
}

TEST_F(OrderedMapTest, isWalkedAscendingWhenFilledAtRandom) {
    Keys shuffled = upTo(kMany);
    std::shuffle(shuffled.begin(), shuffled.end(), std::mt19937(5));
    enterAll(shuffled);
    EXPECT_EQ(walk(), upTo(kMany));
    for (const std::uint32_t key : shuffled)
        EXPECT_EQ(*map->find(key), key * 10);
}

TEST_F(OrderedMapTest, splitsARunThatIsFullAtItsEdges) {
    Keys even(128);
    for (std::uint32_t i = 0; i < 128; ++i)
        even[i] = 2 * (i + 1);
    for (const std::uint32_t odd : {1U, 3U, 127U, 129U, 131U, 255U, 257U}) {
        map = std::make_unique<Map>();
        enterAll(even);
        enter(odd);
        Keys expected = even;
        expected.insert(std::lower_bound(expected.begin(), expected.end(), odd), odd);
        EXPECT_EQ(walk(), expected);
    }
}

TEST_F(OrderedMapTest, givesBackWhatItRemoves) {
    enterAll(upTo(3));
    EXPECT_EQ(map->remove(2U), 20u);
    EXPECT_EQ(map->find(2U), nullptr);
    EXPECT_EQ(walk(), (Keys{1, 3}));
}

TEST_F(OrderedMapTest, dropsRunsThatAreEmpty) {
    enterAll(upTo(kMany));
    for (std::uint32_t key = 100; key <= 900; ++key)
        map->remove(key);
    Keys expected = upTo(99);
    for (std::uint32_t key = 901; key <= kMany; ++key)
        expected.push_back(key);
    EXPECT_EQ(walk(), expected);
    enter(500);
    expected.insert(expected.begin() + 99, 500);
    EXPECT_EQ(walk(), expected);
}

TEST_F(OrderedMapTest, goesOnWhenTheCurrentMemberIsRemoved) {
    enterAll(upTo(kMany));
    EXPECT_EQ(walk([&](std::uint32_t key) { map->remove(key); }), upTo(kMany));
    EXPECT_TRUE(map->empty());
}

TEST_F(OrderedMapTest, skipsTheNextMemberThatIsRemoved) {
    enterAll(upTo(3));
    EXPECT_EQ(walkActingAt(1, [&] { map->remove(2U); }), (Keys{1, 3}));
}

TEST_F(OrderedMapTest, goesOnAtTheFirstGreaterKey) {
    enterAll({10, 20, 30});
    EXPECT_EQ(walkActingAt(20,
                           [&] {
                               map->remove(20U);
                               enter(25);
                               enter(15);
                           }),
              (Keys{10, 20, 25, 30}));
}

TEST_F(OrderedMapTest, doesNotVisitTheSameKeyAgain) {
    enterAll({10, 20, 30});
    EXPECT_EQ(walk([&](std::uint32_t key) {
                  map->remove(key);
                  enter(key);
              }),
              (Keys{10, 20, 30}));
}

TEST_F(OrderedMapTest, goesOnRightWhileItsRunsAreSplit) {
    enterAll({100, 2'000, 3'000});
    Keys expected{100, 2'000};
    for (std::uint32_t key = 2'100; key < 2'500; ++key)
        expected.push_back(key);
    expected.push_back(3'000);
    EXPECT_EQ(walkActingAt(2'000,
                           [&] {
                               for (std::uint32_t key = 200; key < 600; ++key)
                                   enter(key);
                               for (std::uint32_t key = 2'100; key < 2'500; ++key)
                                   enter(key);
                           }),
              expected);
}

TEST_F(OrderedMapTest, endsWhenItIsCleared) {
    enterAll(upTo(kMany));
    EXPECT_EQ(walkActingAt(2, [&] { map->clear(); }), (Keys{1, 2}));
    EXPECT_TRUE(map->empty());
}

TEST_F(OrderedMapTest, letsWalksNest) {
    enterAll(upTo(3));
    Keys inner;
    EXPECT_EQ(walkActingAt(2, [&] { inner = walkActingAt(1, [&] { map->remove(3U); }); }),
              (Keys{1, 2}));
    EXPECT_EQ(inner, (Keys{1, 2}));
}

TEST_F(OrderedMapTest, endsItsWalksWhenItGoes) {
    enterAll(upTo(3));
    EXPECT_EQ(walkActingAt(2, [&] { map.reset(); }), (Keys{1, 2}));
}

TEST_F(OrderedMapTest, stopsTheProgramWhenDereferencedAtTheEnd) {
    EXPECT_DEATH((void)*map->begin(),
                 "platform/Vex/OrderedMap:[0-9]+: .*OrderedMap.*::Iterator::operator\\*.*: "
                 "Assertion `iter_' failed\\.");
}

TEST_F(OrderedMapTest, isAsItWasWhenItCannotEnter) {
    for (std::uint32_t key = 1; key <= 140; ++key)
        TestSupport::failEachAllocation([&] { enter(key * 2); },
                                        [&] {
                                            ASSERT_EQ(map->size(), key - 1);
                                            ASSERT_EQ(map->find(key * 2), nullptr);
                                            ASSERT_EQ(walk().size(), key - 1);
                                        });
    EXPECT_EQ(map->size(), 140u);
}

/// The split of a run may succeed and the entry fail all the same.
TEST_F(OrderedMapTest, isWalkedRightWhenItCannotEnterMeanwhile) {
    Keys even;
    for (std::uint32_t key = 1; key <= 128; ++key)
        even.push_back(key * 2);
    for (std::size_t nth = 0; map->find(151U) == nullptr; ++nth) {
        map = std::make_unique<Map>();
        enterAll(even);
        EXPECT_EQ(walkActingAt(200, [&] { enterFailing(151, nth); }), even) << nth;
    }
}

TEST_F(OrderedMapTest, agreesWithAModelUnderRandomOperations) {
    std::mt19937 random(13);
    std::map<std::uint32_t, std::uint32_t> model;
    for (int i = 0; i < 40'000; ++i) {
        const auto key = static_cast<std::uint32_t>(random() % 700);
        if (model.count(key) == 0) {
            enter(key);
            model.emplace(key, key * 10);
        } else if (random() % 3 != 0) {
            ASSERT_EQ(map->remove(key), model.at(key));
            model.erase(key);
        }
        ASSERT_EQ(map->size(), model.size());
        if (i % 500 != 0) continue;
        Keys expected;
        for (const auto& member : model)
            expected.push_back(member.first);
        ASSERT_EQ(walk(), expected);
    }
}

TEST_F(OrderedMapTest, mayBeChangedByTheValuesThatItDrops) {
    struct Reentrant {
        OrderedMap<std::uint32_t, std::shared_ptr<Reentrant>>* map;
        std::uint32_t enters;
        ~Reentrant() {
            if (enters != 0) map->enter(enters, nullptr);
        }
    };
    OrderedMap<std::uint32_t, std::shared_ptr<Reentrant>> reentrant;
    reentrant.enter(1, std::shared_ptr<Reentrant>(new Reentrant{&reentrant, 7}));
    reentrant.enter(2, std::shared_ptr<Reentrant>(new Reentrant{&reentrant, 8}));
    reentrant.clear();
    std::size_t walked = 0;
    for (auto at = reentrant.begin(); !(at == decltype(reentrant)::End()); ++at)
        ++walked;
    EXPECT_EQ(walked, reentrant.size());
}

TEST(OrderedMapByNameTest, isSearchedByPlainTextWithoutAllocating) {
    OrderedMap<Orin::String, std::uint32_t> byName;
    byName.enter("a name that is longer than any short text", 1);
    const std::size_t before = TestSupport::allocations();
    const auto* found = byName.find(std::string_view("a name that is longer than any short text"));
    EXPECT_EQ(TestSupport::allocations(), before);
    ASSERT_NE(found, nullptr);
}

}  // namespace
}  // namespace Vex
