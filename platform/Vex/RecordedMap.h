#pragma once

#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

#include "platform/OvSlab/Allocator.h"
#include "platform/Vex/KeyTraits.h"

namespace Vex {

/// A keyed collection for the record of one computation: entries are added or replaced, never
/// removed. They lie side by side in order of entry, and a table of their places finds them by key,
/// so that a record is cheaper to fill and to drop than a `HashMap2018`.
///
/// `KeyOf` returns the key of an entry, an `Orin::String`; it may be a pointer to a member.
template <class Entry, auto kKeyOf>
class RecordedMap {
public:
    bool empty() const noexcept { return entries_.empty(); }

    /// Returns the entry under the key; null if there is none. Valid until an entry is added.
    Entry* find(const Orin::String& key) noexcept {
        return places_.empty() ? nullptr : entryAt(placeOf(key));
    }
    const Entry* find(const Orin::String& key) const noexcept {
        return const_cast<RecordedMap*>(this)->find(key);
    }
    /// Adds the entry, or replaces the one with its key.
    Entry& is(Entry entry) {
        if (2 * entries_.size() == places_.size()) grow();
        std::uint32_t& place = places_[placeOf(std::invoke(kKeyOf, entry))];
        if (place != 0) return entries_[place - 1] = std::move(entry);
        Entry& added = entries_.emplace_back(std::move(entry));
        place = static_cast<std::uint32_t>(entries_.size());
        return added;
    }

private:
    static constexpr std::size_t kFirstPlaces = 16;

    /// Where the key's place is, or belongs: the table is never full.
    std::size_t placeOf(const Orin::String& key) const noexcept {
        const std::size_t mask = places_.size() - 1;
        std::size_t at = key.hash() & mask;
        while (places_[at] != 0 && !(std::invoke(kKeyOf, entries_[places_[at] - 1]) == key))
            at = (at + 1) & mask;
        return at;
    }
    Entry* entryAt(std::size_t place) noexcept {
        return places_[place] == 0 ? nullptr : &entries_[places_[place] - 1];
    }
    void grow() {
        const std::size_t count = places_.empty() ? kFirstPlaces : 2 * places_.size();
        entries_.reserve(count / 2);
        places_.assign(count, 0);
        for (std::size_t index = 0; index != entries_.size(); ++index)
            places_[placeOf(std::invoke(kKeyOf, entries_[index]))] =
                static_cast<std::uint32_t>(index + 1);
    }

    std::vector<Entry, OvSlab::Allocator<Entry>> entries_;
    /// By hash: 1 more than the index of an entry, 0 where there is none. A power of two of places,
    /// at least twice as many as entries.
    std::vector<std::uint32_t, OvSlab::Allocator<std::uint32_t>> places_;
};

}  // namespace Vex
