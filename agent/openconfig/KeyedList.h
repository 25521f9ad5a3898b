#pragma once

#include <cstddef>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/Orin/String.h"

namespace QosAgent {

/// A list of the model: entries in the order given, each found by its `key()`. An entry's key does
/// not change while it is in the list.
template <class Entry>
class KeyedList {
public:
    /// Adds an entry at the end; false, and nothing happens, when its key is there already.
    bool add(Entry entry) {
        if (!places_.emplace(entry.key(), entries_.size()).second) return false;
        entries_.push_back(std::move(entry));
        return true;
    }
    /// Null if there is none.
    const Entry* find(const Orin::String& key) const {
        const auto at = places_.find(key);
        return at == places_.end() ? nullptr : &entries_[at->second];
    }
    bool contains(const Orin::String& key) const { return places_.contains(key); }

    std::size_t size() const { return entries_.size(); }
    bool empty() const { return entries_.empty(); }
    auto begin() const { return entries_.begin(); }
    auto end() const { return entries_.end(); }
    auto begin() { return entries_.begin(); }
    auto end() { return entries_.end(); }

private:
    std::vector<Entry> entries_;
    std::unordered_map<Orin::String, std::size_t> places_;
};

}  // namespace QosAgent
