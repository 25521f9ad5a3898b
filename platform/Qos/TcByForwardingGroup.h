#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <utility>

#include "platform/Orin/String.h"
#include "platform/Vex/HashMap2018.h"

namespace Qos {

/// Traffic classes by forwarding-group name, which also knows the way back: the group of a traffic
/// class is found without a scan.
class TcByForwardingGroup
    : public Vex::HashMap2018<Orin::String, std::uint32_t, Vex::seedOf("TcByForwardingGroup")> {
public:
    using Base = HashMap2018;

    Member& enter(const Orin::String& group, std::uint32_t tc) {
        const auto listed = groups_.emplace(tc, group).first;
        try {
            return Base::enter(group, tc);
        } catch (...) {
            groups_.erase(listed);
            throw;
        }
    }
    void assign(const Orin::String& group, std::uint32_t& held, std::uint32_t tc) {
        groups_.emplace(tc, group);
        groups_.erase({held, group});
        held = tc;
    }
    std::optional<std::uint32_t> remove(const Orin::String& group) {
        const std::optional<std::uint32_t> removed = Base::remove(group);
        if (removed) groups_.erase({*removed, group});
        return removed;
    }
    void clear() noexcept {
        Base::clear();
        groups_.clear();
    }

    /// The group with that traffic class, the least name in byte order where there are several;
    /// empty where there is none.
    Orin::String forwardingGroup(std::uint32_t tc) const {
        const auto least = groups_.lower_bound({tc, Orin::String()});
        return least == groups_.end() || least->first != tc ? Orin::String() : least->second;
    }

private:
    std::set<std::pair<std::uint32_t, Orin::String>> groups_;
};

}  // namespace Qos
