#include "agent/openconfig/ForwardingGroupWriter.h"

#include <unordered_set>
#include <utility>

namespace QosAgent {
namespace {

using Qos::ForwardingGroupNameToTcMap;
using Qos::Input::Config;

const Place kMapPlace(Places::kGroupMap);

Place placeOf(const ForwardingGroup& group) {
    return {Places::kGroups, group.name};
}

}  // namespace

ForwardingGroupWriter::ForwardingGroupWriter(Orin::Ptr<Config> config, Ownership& ownership)
    : config_(std::move(config)), ownership_(ownership) {}

void ForwardingGroupWriter::number(const OpenConfigDocument& earlier,
                                   OpenConfigDocument& later) const {
    std::unordered_set<std::uint32_t> taken;
    if (const auto map = config_->forwardingGroupNameToTcMap())
        for (const auto& member : map->tc())
            taken.insert(member.value);
    for (const ForwardingGroup& group : later.groups)
        if (const ForwardingGroup* staying = earlier.groups.find(group.name))
            taken.insert(staying->trafficClass);
    std::uint32_t next = 0;
    for (ForwardingGroup& group : later.groups) {
        if (const ForwardingGroup* staying = earlier.groups.find(group.name)) {
            group.trafficClass = staying->trafficClass;
            continue;
        }
        while (taken.contains(next))
            ++next;
        group.trafficClass = next++;
    }
}

void ForwardingGroupWriter::writeComing(const Difference& difference) {
    const auto& [earlier, later] = difference;
    if (later.groups.empty()) return;
    const Orin::Ptr<ForwardingGroupNameToTcMap> map = describedMap(!earlier.groups.empty());
    for (const ForwardingGroup& group : later.groups) {
        const std::uint32_t* held = map->tc().find(group.name);
        if (held == nullptr) {
            ownership_.created(placeOf(group));
        } else {
            ownership_.describe(placeOf(group), earlier.groups.contains(group.name));
            if (*held == group.trafficClass) continue;
            ownership_.changed(placeOf(group));
        }
        map->tcIs(group.name, group.trafficClass);
    }
}

Orin::Ptr<ForwardingGroupNameToTcMap> ForwardingGroupWriter::describedMap(bool wasDescribed) {
    if (const auto held = config_->forwardingGroupNameToTcMap()) {
        ownership_.describe(kMapPlace, wasDescribed);
        return held;
    }
    // A new map is attached before it has groups: subscribers learn of a group only by its change.
    const auto map = ForwardingGroupNameToTcMap::create();
    ownership_.created(kMapPlace);
    config_->forwardingGroupNameToTcMapIs(map);
    return map;
}

void ForwardingGroupWriter::removeGoing(const Difference& difference) {
    const auto& [earlier, later] = difference;
    const auto map = config_->forwardingGroupNameToTcMap();
    if (!map || earlier.groups.empty()) return;
    // One by one, so that subscribers learn which groups are gone: the change of a whole map names
    // none.
    for (const ForwardingGroup& group : earlier.groups)
        if (!later.groups.contains(group.name) && ownership_.leave(placeOf(group)))
            map->tcDel(group.name);
    if (later.groups.empty() && ownership_.leave(kMapPlace))
        config_->forwardingGroupNameToTcMapIs(nullptr);
}

}  // namespace QosAgent
