#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "tests/platform/Vex/CollectionActs.h"

namespace Vex {

/// A model of hashed collections: members are in insertion order, and a walk visits those that were
/// present when it began and were not removed since.
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

/// A model of ordered collections: a walk continues at the first key that is greater.
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

}  // namespace Vex
