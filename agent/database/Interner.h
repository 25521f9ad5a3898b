#pragma once

#include <cstddef>
#include <string_view>
#include <unordered_set>

#include "platform/Orin/TextHash.h"

namespace QosAgent {

/// Returns one shared text for equal names, so that the names that connect the objects of a
/// database, and the parts decoded from them, can be compared by pointer. Remembers the texts of
/// the last calls: at least `kGeneration` texts, at most twice as many.
class Interner {
public:
    static constexpr std::size_t kGeneration = std::size_t{1} << 18;

    Orin::String operator()(std::string_view text);

private:
    struct Equal {
        using is_transparent = void;
        bool operator()(std::string_view a, std::string_view b) const { return a == b; }
    };
    using Texts = std::unordered_set<Orin::String, Orin::TextHash, Equal>;

    Texts young_;
    Texts old_;
};

}  // namespace QosAgent
