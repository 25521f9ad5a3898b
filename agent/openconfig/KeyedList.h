#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "agent/configuration/PersistentMap.h"
#include "platform/Orin/String.h"

namespace QosAgent {

/// A list of the model: entries in the order given, each found by its `key()`. Copies share their
/// entries, so that two of them are compared by what differs.
template <class Entry>
class KeyedList {
public:
    using EntryPtr = std::shared_ptr<const Entry>;

    /// Adds an entry at the end; false, and nothing happens, when its key is there already.
    bool add(Entry entry) {
        if (contains(entry.key())) return false;
        set(std::move(entry));
        return true;
    }
    /// Adds an entry at the end, or puts it in the place of the one with its key; at the place that
    /// `order` says, if it is not 0.
    void set(Entry entry, std::uint64_t order = 0) {
        entries_.set(std::make_shared<const Entry>(std::move(entry)), order);
    }
    /// Has no effect if there is none.
    void erase(const Orin::String& key) { entries_.erase(key); }

    /// Null if there is none. Lives as long as any copy of the list has the entry.
    const Entry* find(const Orin::String& key) const {
        const EntryPtr* entry = entries_.find(key);
        return entry == nullptr ? nullptr : entry->get();
    }
    bool contains(const Orin::String& key) const { return find(key) != nullptr; }
    /// Ascending in the order given; 0 if there is none.
    std::uint64_t orderOf(const Orin::String& key) const { return entries_.orderOf(key); }

    std::size_t size() const { return entries_.size(); }
    bool empty() const { return entries_.empty(); }
    /// The entry with the least key; null if there is none.
    const Entry* first() const {
        const EntryPtr* entry = entries_.first();
        return entry == nullptr ? nullptr : entry->get();
    }
    /// In the order given.
    std::vector<EntryPtr> inOrder() const { return entries_.inOrder(); }

    /// Calls `visit` with the entries that two lists have under a key, one of them null where only
    /// the other has the key, unless both share the entry.
    template <class Visit>
    static void eachDifference(const KeyedList& before, const KeyedList& after, Visit visit) {
        PersistentMap<Entry>::eachDifference(before.entries_, after.entries_,
                                             [&](const EntryPtr& earlier, const EntryPtr& later) {
                                                 visit(earlier.get(), later.get());
                                             });
    }

private:
    PersistentMap<Entry> entries_;
};

}  // namespace QosAgent
