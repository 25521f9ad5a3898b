#include "agent/openconfig/ForwardingGroupWriter.h"

#include <algorithm>
#include <utility>
#include <vector>

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

void ForwardingGroupWriter::number(const OpenConfigDocument& earlier, OpenConfigDocument& later,
                                   const Touched& touched) {
    std::vector<ForwardingGroup> renumbered, added;
    KeyedList<ForwardingGroup>::eachDifference(
        earlier.groups, later.groups,
        [&](const ForwardingGroup* before, const ForwardingGroup* after) {
            if (after == nullptr) return;
            if (before == nullptr)
                added.push_back(*after);
            else if (before->trafficClass != after->trafficClass)
                renumbered.push_back(*before);
        });
    for (ForwardingGroup& group : renumbered)
        later.groups.set(std::move(group));
    if (added.empty()) return;
    std::sort(added.begin(), added.end(), [&](const auto& left, const auto& right) {
        return later.groups.orderOf(left.name) < later.groups.orderOf(right.name);
    });
    Numbers reserved = reserve(earlier, later, touched);
    for (ForwardingGroup& group : added) {
        group.trafficClass = numbers_.leastFree();
        numbers_.take(group.trafficClass);
        reserved.push_back(group.trafficClass);
        later.groups.set(std::move(group));
    }
    for (const std::uint32_t number : reserved)
        numbers_.release(number);
}

void ForwardingGroupWriter::learn(const OpenConfigDocument& earlier, const Touched& touched) {
    // Where no document was, nobody noted what others did.
    if (!earlier.empty() && !touched.isAll()) {
        for (const Orin::String& name : touched.groups())
            learn(name);
        return;
    }
    numbers_ = {};
    map_.clear();
    const auto map = config_->forwardingGroupNameToTcMap();
    if (!map) return;
    for (const auto& member : map->tc())
        learn(member.key);
}

void ForwardingGroupWriter::learn(const Orin::String& name) {
    const auto map = config_->forwardingGroupNameToTcMap();
    const std::uint32_t* held = map ? map->tc().find(name) : nullptr;
    if (const auto known = map_.find(name); known != map_.end()) {
        numbers_.release(known->second);
        map_.erase(known);
    }
    if (held == nullptr) return;
    numbers_.take(*held);
    map_.emplace(name, *held);
}

ForwardingGroupWriter::Numbers ForwardingGroupWriter::reserve(const OpenConfigDocument& earlier,
                                                              const OpenConfigDocument& later,
                                                              const Touched& touched) {
    Numbers reserved;
    const auto reserveOf = [&](const Orin::String& name) {
        const ForwardingGroup* group = later.groups.find(name);
        if (group == nullptr || !earlier.groups.contains(name)) return;
        numbers_.take(group->trafficClass);
        reserved.push_back(group->trafficClass);
    };
    for (const Orin::String& name : touched.groups())
        reserveOf(name);
    if (touched.isAll())
        for (const auto& group : later.groups.inOrder())
            reserveOf(group->name);
    return reserved;
}

void ForwardingGroupWriter::writeComing(const Difference& difference) {
    const OpenConfigDocument& earlier = difference.earlier();
    if (difference.comingGroups().empty()) return;
    const Orin::Ptr<ForwardingGroupNameToTcMap> map = describedMap(!earlier.groups.empty());
    for (const ForwardingGroup* coming : difference.comingGroups()) {
        const ForwardingGroup& group = *coming;
        const std::uint32_t* held = map->tc().find(group.name);
        if (held == nullptr) {
            ownership_.created(placeOf(group));
        } else {
            ownership_.describe(placeOf(group), earlier.groups.contains(group.name));
            if (*held == group.trafficClass) continue;
            ownership_.changed(placeOf(group));
        }
        map->tcIs(group.name, group.trafficClass);
        learn(group.name);
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
    const auto map = config_->forwardingGroupNameToTcMap();
    if (!map || difference.goingGroups().empty()) return;
    // One by one, so that subscribers learn which groups are gone: the change of a whole map names
    // none.
    for (const ForwardingGroup* group : difference.goingGroups()) {
        if (!ownership_.leave(placeOf(*group))) continue;
        map->tcDel(group->name);
        learn(group->name);
    }
    if (difference.later().groups.empty() && ownership_.leave(kMapPlace))
        config_->forwardingGroupNameToTcMapIs(nullptr);
}

}  // namespace QosAgent
