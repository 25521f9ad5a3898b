#pragma once

#include <array>

#include "bench/Event.h"

namespace QosBench {

/// Rules that are added one by one to an access list that starts empty, on a device; each changes
/// the state.
template <class D>
class RuleLoad {
public:
    explicit RuleLoad(std::size_t rules) : rules_(rules) { device_.start(); }

    void empty() { device_.giveRules(0); }
    void add() {
        for (std::size_t rule = 0; rule != rules_; ++rule)
            device_.addRule();
    }

private:
    D device_{1};
    std::size_t rules_;
};

template <class L>
inline constexpr std::array kRuleLoads{
    Event<L>{
        .name = "rules loaded one by one", .run = verb<L, &L::add>, .before = verb<L, &L::empty>},
};

}  // namespace QosBench
