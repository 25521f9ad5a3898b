#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "platform/Vex/HashMap2018.h"
#include "platform/Vex/OrderedMap.h"
#include "tests/platform/Vex/CollectionModels.h"
#include "tests/support/Reentrancy.h"

namespace Vex {
namespace {

using TestSupport::Differences;
using TestSupport::kNewcomers;
using TestSupport::Script;
using TestSupport::Verb;

/// A collection of type `Map` of values that act when they are dropped.
template <template <class, class> class Map>
class MapStage : public Acts<MapStage<Map>> {
public:
    static const std::vector<Verb> kVerbs;

    MapStage(int members, Script& script) : script_(script) {
        for (int member = 0; member < members; ++member)
            enter(member);
    }
    ~MapStage() { drop(); }
    MapStage(const MapStage&) = delete;
    MapStage& operator=(const MapStage&) = delete;

    void tell() {
        if (!isThere()) return;
        for (auto at = reachable_->begin(); !(at == typename Members::End()); ++at)
            script_.told(*this, memberAt((*at).key));
    }
    bool isThere() const { return reachable_ != nullptr; }
    bool contains(int member) { return reachable_->find(keyOf(member)) != nullptr; }
    void enter(int member) { reachable_->enter(keyOf(member), made(member)); }
    void remove(int member) { reachable_->remove(keyOf(member)); }
    void assign(int member) {
        const std::uint32_t key = keyOf(member);
        if (Held* held = reachable_->find(key)) reachable_->assign(key, *held, made(member));
    }
    void clear() { reachable_->clear(); }
    void drop() {
        if (!map_) return;
        map_.reset();
        reachable_ = nullptr;
    }

private:
    struct Cargo {
        MapStage& stage;
        int member;
        ~Cargo() { stage.script_.dropped(stage, member); }
    };
    using Held = std::unique_ptr<Cargo>;
    using Members = Map<std::uint32_t, Held>;

    Held made(int member) { return Held(new Cargo{*this, member}); }

    Script& script_;
    std::unique_ptr<Members> map_ = std::make_unique<Members>();
    Members* reachable_ = map_.get();  ///< also while it is being destroyed
};
template <template <class, class> class Map>
const std::vector<Verb> MapStage<Map>::kVerbs = {
    Verb::remove, Verb::enterAgain, Verb::assign,    Verb::enterAfter,
    Verb::clear,  Verb::again,      Verb::dropWhole,
};

/// Skips who stands behind one that is removed, and visits newcomers.
template <class K, class V>
class IndexMap {
public:
    struct Member {
        K key;
        V value;
    };
    struct End {};
    struct Iterator {
        const IndexMap& map;
        std::size_t index;
        const Member& operator*() const { return map.members_[index]; }
        void operator++() { ++index; }
        bool operator==(End) const { return index >= map.members_.size(); }
    };

    Iterator begin() const { return {*this, 0}; }
    V* find(const K& key) {
        const auto at = memberAt(key);
        return at == members_.end() ? nullptr : &at->value;
    }
    void enter(const K& key, V value) { members_.push_back({key, std::move(value)}); }
    void assign(const K&, V& held, V value) { std::swap(held, value); }
    void remove(const K& key) {
        const auto at = memberAt(key);
        if (at == members_.end()) return;
        const V value = std::move(at->value);
        members_.erase(at);
    }
    void clear() {
        while (!members_.empty())
            remove(members_.front().key);
    }

private:
    auto memberAt(const K& key) {
        return std::find_if(members_.begin(), members_.end(),
                            [key](const Member& member) { return member.key == key; });
    }

    std::vector<Member> members_;
};

template <template <class, class> class Map>
class WithoutDrop : public MapStage<Map> {
public:
    using MapStage<Map>::MapStage;
    static const std::vector<Verb> kVerbs;
    static constexpr bool kDropsAct = false;
};
template <template <class, class> class Map>
const std::vector<Verb> WithoutDrop<Map>::kVerbs = {Verb::remove, Verb::enterAfter};

/// Template arguments with defaults fit no parameter of fewer.
template <class K, class V>
using Hash = HashMap2018<K, V>;
template <class K, class V>
using Ordered = OrderedMap<K, V>;

template <class Stage, class Model>
void expectAgreement() {
    const Differences none = TestSupport::differences<Stage, Model>(TestSupport::mostMembers());
    EXPECT_EQ(none.count, 0u) << none.first;
    EXPECT_GT(none.plays, 500u);
}

TEST(CollectionReentrancyTest, holdsForHashedOnesWhateverTwoMembersDo) {
    expectAgreement<MapStage<Hash>, HashModel>();
}

TEST(CollectionReentrancyTest, holdsForOrderedOnesWhateverTwoMembersDo) {
    expectAgreement<MapStage<Ordered>, OrderedModel>();
}

TEST(CollectionReentrancyTest, doesNotHoldForAnIndexIntoAnArray) {
    EXPECT_EQ((TestSupport::differences<WithoutDrop<IndexMap>, HashModel>(2).first),
              "1 members; 0 enters a newcomer after -1; 0 enters a newcomer after -1; "
              "told: 0 100 | 0 100 | (0) (100); expected: 0 | 0 100 | (0) (100)");
}

TEST(CollectionReentrancyTest, tellsTheTwoOrdersApart) {
    EXPECT_EQ((TestSupport::differences<MapStage<Hash>, OrderedModel>(2).first),
              "1 members; 0 removes 0; 0 enters a newcomer after 0; "
              "told: 0 (0) | 101 | (101); expected: 0 (0) 101 | 101 | (101)");
}

}  // namespace
}  // namespace Vex
