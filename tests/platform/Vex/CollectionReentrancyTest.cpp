#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "platform/Vex/HashMap2018.h"
#include "platform/Vex/OrderedMap.h"
#include "tests/support/Reentrancy.h"

namespace Vex {
namespace {

using TestSupport::Differences;
using TestSupport::kNewcomers;
using TestSupport::Script;
using TestSupport::Verb;

/// Newcomers lie between the others, in ascending order.
std::uint32_t keyOf(int member) {
    return static_cast<std::uint32_t>(member >= kNewcomers ? 2 * (member - kNewcomers)
                                                           : 2 * member + 1);
}
int memberAt(std::uint32_t key) {
    return static_cast<int>(key) / 2 + (key % 2 == 0 ? kNewcomers : 0);
}
int newcomerAfter(int target) {
    return kNewcomers + target + 1;
}

/// What is done to a collection, in terms of what `Derived` has: `contains`, `enter`, `remove`,
/// `assign`, `clear`, `drop` and `tell`.
template <class Derived>
class Acts {
public:
    static constexpr bool kDropsAct = true;

    void perform(Verb verb, int target) {
        if (!self().isThere()) return;
        switch (verb) {
            case Verb::remove:
                return self().remove(target);
            case Verb::enterAgain:
                self().remove(target);
                return enterNew(target);
            case Verb::assign:
                return self().assign(target);
            case Verb::enterAfter:
                return enterNew(newcomerAfter(target));
            case Verb::clear:
                ++clearings_;
                self().clear();
                --clearings_;
                return;
            case Verb::again:
                return self().tell();
            default:
                if (clearings_ == 0) self().drop();  // who clears it keeps it alive
        }
    }

private:
    Derived& self() { return static_cast<Derived&>(*this); }
    /// What goes may have entered it already, or may have dropped everything.
    void enterNew(int member) {
        if (self().isThere() && !self().contains(member)) self().enter(member);
    }

    int clearings_ = 0;
};

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

/// What a hashed collection is to do: members in order of entry; a walk visits those that were
/// there when it began, and have not left since.
class HashModel : public Acts<HashModel> {
public:
    HashModel(int members, Script& script) : script_(script) {
        for (int member = 0; member < members; ++member)
            enter(member);
    }
    ~HashModel() { drop(); }
    HashModel(const HashModel&) = delete;
    HashModel& operator=(const HashModel&) = delete;

    void tell() {
        for (const Entry& entry : std::vector<Entry>(entries_))
            if (std::count(entries_.begin(), entries_.end(), entry) != 0)
                script_.told(*this, entry.member);
    }
    bool isThere() const { return isThere_; }
    bool contains(int member) const { return at(member) != entries_.end(); }
    void enter(int member) { entries_.push_back({member, ++entered_}); }
    void remove(int member) {
        const auto gone = at(member);
        if (gone == entries_.end()) return;
        entries_.erase(gone);
        script_.dropped(*this, member);
    }
    void assign(int member) {
        if (contains(member)) script_.dropped(*this, member);
    }
    void clear() {
        while (!entries_.empty())
            remove(entries_.front().member);
    }
    void drop() {
        if (std::exchange(isDropped_, true)) return;
        clear();
        isThere_ = false;
    }

private:
    struct Entry {
        int member;
        int entered;
        friend bool operator==(const Entry&, const Entry&) = default;
    };
    std::vector<Entry>::const_iterator at(int member) const {
        return std::find_if(entries_.begin(), entries_.end(),
                            [member](const Entry& entry) { return entry.member == member; });
    }

    Script& script_;
    std::vector<Entry> entries_;
    int entered_ = 0;
    bool isThere_ = true;  ///< also while it is being dropped
    bool isDropped_ = false;
};

/// What an ordered collection is to do: a walk goes on at the first key that is greater then.
class OrderedModel : public Acts<OrderedModel> {
public:
    OrderedModel(int members, Script& script) : script_(script) {
        for (int member = 0; member < members; ++member)
            enter(member);
    }
    ~OrderedModel() { drop(); }
    OrderedModel(const OrderedModel&) = delete;
    OrderedModel& operator=(const OrderedModel&) = delete;

    void tell() {
        std::optional<std::uint32_t> last;
        for (;;) {
            const auto next =
                last ? std::upper_bound(keys_.begin(), keys_.end(), *last) : keys_.begin();
            if (next == keys_.end()) return;
            last = *next;
            script_.told(*this, memberAt(*last));
        }
    }
    bool isThere() const { return isThere_; }
    bool contains(int member) const {
        return std::binary_search(keys_.begin(), keys_.end(), keyOf(member));
    }
    void enter(int member) {
        keys_.insert(std::lower_bound(keys_.begin(), keys_.end(), keyOf(member)), keyOf(member));
    }
    void remove(int member) {
        if (std::erase(keys_, keyOf(member)) != 0) script_.dropped(*this, member);
    }
    void assign(int member) {
        if (contains(member)) script_.dropped(*this, member);
    }
    void clear() {
        while (!keys_.empty())
            remove(memberAt(keys_.back()));
    }
    void drop() {
        if (std::exchange(isDropped_, true)) return;
        clear();
        isThere_ = false;
    }

private:
    Script& script_;
    std::vector<std::uint32_t> keys_;
    bool isThere_ = true;  ///< also while it is being dropped
    bool isDropped_ = false;
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
