#include "agent/json/DuplicateKeys.h"

#include <algorithm>
#include <string_view>

#include "agent/json/Excerpt.h"

namespace QosAgent {

std::optional<Fault> DuplicateKeys::firstIn(const std::vector<JsonNode>& nodes,
                                            const std::vector<char>& texts,
                                            std::uint32_t container) {
    if (nodes[container].kind != JsonKind::object || nodes[container].size < 2) return {};
    listKeys(nodes, container);
    const auto textOf = [&](std::uint32_t node) {
        return JsonValue(&nodes[node], texts.data()).text();
    };
    // Sorting, unlike hashing, costs the same whatever names an adversary picks.
    std::sort(keys_.begin(), keys_.end(), [&](std::uint32_t left, std::uint32_t right) {
        const int order = textOf(left).compare(textOf(right));
        return order != 0 ? order < 0 : left < right;
    });
    std::uint32_t first = 0;
    for (std::size_t i = 1; i < keys_.size(); ++i) {
        if (first != 0 && keys_[i] > first) continue;
        if (textOf(keys_[i - 1]) == textOf(keys_[i])) first = keys_[i];
    }
    if (first == 0) return {};  // node 0 is the root, never a key
    return Fault{nodes[first].offset, "duplicate key " + excerpt(textOf(first))};
}

void DuplicateKeys::listKeys(const std::vector<JsonNode>& nodes, std::uint32_t object) {
    const std::uint32_t end = object + nodes[object].place;
    keys_.clear();
    for (std::uint32_t at = object + 1; at < end;) {
        keys_.push_back(at++);
        if (at < end) at += nodes[at].nodes();
    }
}

}  // namespace QosAgent
