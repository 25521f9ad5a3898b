#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <random>
#include <unordered_map>
#include <vector>

#include "platform/Vex/HashMap2018.h"
#include "tests/support/Allocations.h"
#include "tests/support/Printers.h"

namespace Vex {
namespace {

using Map = HashMap2018<std::uint32_t, std::shared_ptr<std::uint32_t>, 17>;
using Keys = std::vector<std::uint32_t>;

class HashMap2018Test : public ::testing::Test {
protected:
    void enter(std::uint32_t key) { map->enter(key, std::make_shared<std::uint32_t>(key * 10)); }
    void enterUpTo(std::uint32_t count) {
        for (std::uint32_t key = 1; key <= count; ++key)
            enter(key);
    }
    /// Walks the collection, calling `act` at each key; returns the keys.
    Keys walk(const std::function<void(std::uint32_t)>& act = [](std::uint32_t) {}) {
        Keys visited;
        for (auto at = map->begin(); !(at == Map::End()); ++at) {
            visited.push_back(at->key);
            EXPECT_EQ(*at->value, at->key * 10);
            act(at->key);
            EXPECT_EQ(at->key, visited.back()) << "the key stays readable";
        }
        return visited;
    }
    /// The same, acting only at one key.
    Keys walkActingAt(std::uint32_t key, const std::function<void()>& act) {
        return walk([&](std::uint32_t at) {
            if (at == key) act();
        });
    }

    std::unique_ptr<Map> map = std::make_unique<Map>();
};

TEST_F(HashMap2018Test, beginsEmpty) {
    EXPECT_TRUE(map->empty());
    EXPECT_EQ(map->find(1U), nullptr);
    EXPECT_EQ(map->remove(1U), std::nullopt);
    EXPECT_EQ(walk(), Keys{});
}

TEST_F(HashMap2018Test, tellsWhichOfTwoCameFirst) {
    enterUpTo(3);
    EXPECT_TRUE(map->isBefore(1U, 3U));
    EXPECT_FALSE(map->isBefore(3U, 1U));
    EXPECT_FALSE(map->isBefore(2U, 2U));
    EXPECT_FALSE(map->isBefore(1U, 4U));
    EXPECT_FALSE(map->isBefore(0U, 1U));
    map->remove(1U);
    enter(1);
    EXPECT_TRUE(map->isBefore(3U, 1U));
}

TEST_F(HashMap2018Test, findsWhatWasEntered) {
    enterUpTo(100);
    EXPECT_EQ(map->size(), 100u);
    for (std::uint32_t key = 1; key <= 100; ++key) {
        ASSERT_NE(map->find(key), nullptr);
        EXPECT_EQ(**map->find(key), key * 10);
    }
    EXPECT_EQ(map->find(101U), nullptr);
}

TEST_F(HashMap2018Test, givesBackWhatItRemoves) {
    enterUpTo(2);
    EXPECT_EQ(*map->remove(1U).value(), 10u);
    EXPECT_EQ(map->find(1U), nullptr);
    EXPECT_EQ(map->size(), 1u);
}

TEST_F(HashMap2018Test, keepsMembersInTheirPlaceWhileItGrows) {
    enterUpTo(1);
    const auto* member = map->find(1U);
    enterUpTo(1);
    map->remove(1U);
    for (std::uint32_t key = 2; key < 1'000; ++key)
        enter(key);
    EXPECT_NE(member, nullptr);
    EXPECT_EQ(map->find(1U), member);
}

TEST_F(HashMap2018Test, isWalkedInOrderOfEntry) {
    for (const std::uint32_t key : {5U, 1U, 4U, 2U})
        enter(key);
    map->remove(1U);
    enter(1);
    EXPECT_EQ(walk(), (Keys{5, 4, 2, 1}));
}

TEST_F(HashMap2018Test, goesOnWhenTheCurrentMemberIsRemoved) {
    enterUpTo(4);
    EXPECT_EQ(walk([&](std::uint32_t key) { map->remove(key); }), (Keys{1, 2, 3, 4}));
    EXPECT_TRUE(map->empty());
}

TEST_F(HashMap2018Test, showsNoValueOfTheCurrentMemberOnceItIsRemoved) {
    enterUpTo(1);
    auto at = map->begin();
    const auto removed = map->remove(1U);
    EXPECT_EQ(at->key, 1u);
    EXPECT_EQ(at->value, nullptr);
    EXPECT_EQ(removed->use_count(), 1);
}

TEST_F(HashMap2018Test, skipsTheNextMemberThatIsRemoved) {
    enterUpTo(3);
    EXPECT_EQ(walkActingAt(1, [&] { map->remove(2U); }), (Keys{1, 3}));
}

TEST_F(HashMap2018Test, endsWhenAllMembersAreRemoved) {
    enterUpTo(4);
    EXPECT_EQ(walkActingAt(2, [&] { map->clear(); }), (Keys{1, 2}));
    EXPECT_EQ(map->size(), 0u);
    EXPECT_EQ(map->find(3U), nullptr);
}

TEST_F(HashMap2018Test, passesOverMembersThatAreEnteredMeanwhile) {
    enterUpTo(2);
    EXPECT_EQ(walk([&](std::uint32_t key) { enter(key + 10); }), (Keys{1, 2}));
    EXPECT_EQ(walk(), (Keys{1, 2, 11, 12}));
}

TEST_F(HashMap2018Test, isWalkedRightWhileItGrows) {
    enterUpTo(3);
    EXPECT_EQ(walkActingAt(2,
                           [&] {
                               for (std::uint32_t key = 100; key < 1'000; ++key)
                                   enter(key);
                           }),
              (Keys{1, 2, 3}));
    EXPECT_EQ(map->size(), 903u);
    EXPECT_EQ(**map->find(999U), 9'990u);
}

TEST_F(HashMap2018Test, visitsAMemberOnceThatIsRemovedAndEnteredAgain) {
    enterUpTo(3);
    EXPECT_EQ(walk([&](std::uint32_t key) {
                  map->remove(key);
                  enter(key);
              }),
              (Keys{1, 2, 3}));
    EXPECT_EQ(walk(), (Keys{1, 2, 3}));
}

TEST_F(HashMap2018Test, passesOverALaterMemberThatIsRemovedAndEnteredAgain) {
    enterUpTo(3);
    EXPECT_EQ(walkActingAt(1,
                           [&] {
                               map->remove(2U);
                               enter(2);
                           }),
              (Keys{1, 3}));
}

TEST_F(HashMap2018Test, letsWalksNestAndRemoveWhereBothStand) {
    enterUpTo(3);
    Keys inner;
    EXPECT_EQ(walkActingAt(2,
                           [&] {
                               inner = walkActingAt(2, [&] { map->remove(2U); });
                               enter(2);
                           }),
              (Keys{1, 2, 3}));
    EXPECT_EQ(inner, (Keys{1, 2, 3}));
}

TEST_F(HashMap2018Test, letsAnInnerWalkClearAndFillAgain) {
    enterUpTo(3);
    EXPECT_EQ(walkActingAt(1,
                           [&] {
                               walkActingAt(2, [&] {
                                   map->clear();
                                   enterUpTo(3);
                               });
                           }),
              Keys{1});
    EXPECT_EQ(walk(), (Keys{1, 2, 3}));
}

TEST_F(HashMap2018Test, endsItsWalksWhenItGoes) {
    enterUpTo(3);
    EXPECT_EQ(walkActingAt(2, [&] { map.reset(); }), (Keys{1, 2}));
}

TEST_F(HashMap2018Test, maySeeAWalkGivenUp) {
    enterUpTo(3);
    for (const auto& member : *map) {
        map->remove(std::uint32_t{member.key});
        break;
    }
    EXPECT_EQ(walk(), (Keys{2, 3}));
}

TEST_F(HashMap2018Test, stopsTheProgramWhenDereferencedAtTheEnd) {
    EXPECT_DEATH((void)*map->begin(),
                 "platform/Vex/HashMap2018:[0-9]+: .*HashMap2018.*::Iterator::operator\\*.*: "
                 "Assertion `iter_' failed\\.");
}

TEST_F(HashMap2018Test, isAsItWasWhenItCannotEnter) {
    for (std::uint32_t key = 1; key <= 20; ++key) {
        const auto value = std::make_shared<std::uint32_t>(key * 10);
        TestSupport::failEachAllocation([&] { map->enter(key, value); },
                                        [&] {
                                            EXPECT_EQ(map->size(), key - 1);
                                            EXPECT_EQ(map->find(key), nullptr);
                                            EXPECT_EQ(walk().size(), key - 1);
                                        });
    }
    EXPECT_EQ(map->size(), 20u);
}

TEST_F(HashMap2018Test, mayBeChangedByTheValuesThatItDrops) {
    struct Reentrant {
        HashMap2018<std::uint32_t, std::shared_ptr<Reentrant>>* map;
        ~Reentrant() { map->remove(2U); }
    };
    HashMap2018<std::uint32_t, std::shared_ptr<Reentrant>> reentrant;
    for (std::uint32_t key = 1; key <= 3; ++key)
        reentrant.enter(key, std::make_shared<Reentrant>(Reentrant{&reentrant}));
    reentrant.clear();
    EXPECT_TRUE(reentrant.empty());
}

TEST_F(HashMap2018Test, agreesWithAModelUnderRandomOperations) {
    std::mt19937 random(11);
    std::unordered_map<std::uint32_t, std::uint32_t> model;
    for (int i = 0; i < 40'000; ++i) {
        const auto key = static_cast<std::uint32_t>(random() % 300);
        auto* held = map->find(key);
        ASSERT_EQ(held != nullptr, model.count(key) == 1);
        if (random() % 2 == 0) {
            const auto removed = map->remove(key);
            ASSERT_EQ(removed.has_value(), model.erase(key) == 1);
        } else if (held != nullptr) {
            ASSERT_EQ(**held, model.at(key));
        } else {
            enter(key);
            model.emplace(key, key * 10);
        }
        ASSERT_EQ(map->size(), model.size());
    }
    EXPECT_EQ(walk().size(), model.size());
}

}  // namespace
}  // namespace Vex
