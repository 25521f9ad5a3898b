#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <utility>

#include "platform/Orin/String.h"
#include "platform/Vex/HashMap2018.h"

namespace Qos {

/// A map from forwarding-group names to traffic classes that also finds the group of a traffic
/// class without a scan.
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

    /// Returns the group with this traffic class: the least name in byte order if there are
    /// several, empty if there is none.
    Orin::String forwardingGroup(std::uint32_t tc) const {
        const Groups* groups = groups_.find(tc);
        return groups == nullptr ? Orin::String() : groups->least;
    }

private:
    /// Most traffic classes have one group.
    struct Groups {
        Orin::String least;
        std::set<Orin::String> others;
    };

    void list(const Orin::String& group, std::uint32_t tc) {
        if (Groups* groups = groups_.find(tc)) {
            const bool isLeast = group < groups->least;
            groups->others.insert(isLeast ? groups->least : group);
            if (isLeast) groups->least = group;
            return;
        }
        groups_.enter(tc, Groups{group, {}});
    }
    void unlist(const Orin::String& group, std::uint32_t tc) noexcept {
        Groups& groups = *groups_.find(tc);
        if (group != groups.least)
            groups.others.erase(group);
        else if (groups.others.empty())
            groups_.erase(tc);
        else
            groups.least = std::move(groups.others.extract(groups.others.begin()).value());
    }

    HashMap2018<std::uint32_t, Groups, Vex::seedOf("TcByForwardingGroup.groups")> groups_;
};

}  // namespace Qos
