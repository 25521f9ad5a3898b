#pragma once

#include <cstdint>
#include <map>
#include <unordered_map>

#include "platform/Orin/Vector.h"

namespace QosBench {

/// What rules are measured against: an access list whose rules are kept in tree and hash nodes, and
/// the term that follows from it.
class NodeRules {
public:
    explicit NodeRules(std::size_t) {}

    void start() {}
    void giveRules(std::size_t rules) {
        sequence_.clear();
        dscpById_.clear();
        lastSequence_ = 0;
        while (lastSequence_ != rules)
            addRule();
        apply();
    }
    void addRule() {
        ++lastSequence_;
        dscpById_[lastSequence_] = static_cast<std::uint8_t>(lastSequence_ % 64);
        sequence_[lastSequence_] = lastSequence_;
        apply();
    }

private:
    void apply() {
        Orin::Vector<std::uint8_t> dscps;
        for (const auto& [sequence, id] : sequence_)
            if (const auto rule = dscpById_.find(id); rule != dscpById_.end())
                dscps.push(rule->second);
        if (!(term_ == dscps)) term_.swap(dscps);
    }

    std::map<std::uint32_t, std::uint32_t> sequence_;
    std::unordered_map<std::uint32_t, std::uint8_t> dscpById_;
    Orin::Vector<std::uint8_t> term_;
    std::uint32_t lastSequence_ = 0;
};

}  // namespace QosBench
