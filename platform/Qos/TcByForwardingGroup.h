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
        list(group, tc);
        try {
            return Base::enter(group, tc);
        } catch (...) {
            unlist(group, tc);
            throw;
        }
    }
    void assign(const Orin::String& group, std::uint32_t& held, std::uint32_t tc) {
        list(group, tc);
        unlist(group, held);
        held = tc;
    }
    std::optional<std::uint32_t> remove(const Orin::String& group) {
        const std::optional<std::uint32_t> removed = Base::remove(group);
        if (removed) unlist(group, *removed);
        return removed;
    }
    void clear() noexcept {
        Base::clear();
        groups_.clear();
    }

    /// The group with that traffic class, the least name in byte order where there are several;
    /// empty where there is none.
    Orin::String forwardingGroup(std::uint32_t tc) const {
        const Groups* groups = groups_.find(tc);
        return groups == nullptr ? Orin::String() : *groups->begin();
    }

private:
    /// Never empty; in byte order.
    using Groups = std::set<Orin::String>;

    void list(const Orin::String& group, std::uint32_t tc) {
        if (Groups* groups = groups_.find(tc)) {
            groups->insert(group);
            return;
        }
        Groups only{group};
        groups_.enter(tc, std::move(only));
    }
    void unlist(const Orin::String& group, std::uint32_t tc) noexcept {
        Groups& groups = *groups_.find(tc);
        groups.erase(group);
        if (groups.empty()) groups_.erase(tc);
    }

    HashMap2018<std::uint32_t, Groups, Vex::seedOf("TcByForwardingGroup.groups")> groups_;
};

}  // namespace Qos
