#include "agent/openconfig/ForwardingGroupWriter.h"

#include <unordered_set>
#include <utility>

namespace QosAgent {
namespace {

using Qos::ForwardingGroupNameToTcMap;
using Qos::Input::Config;

}  // namespace

ForwardingGroupWriter::ForwardingGroupWriter(Orin::Ptr<Config> config, Found& found)
    : config_(std::move(config)), found_(found) {}

void ForwardingGroupWriter::number(const OpenConfigDocument& earlier,
                                   OpenConfigDocument& later) const {
    std::unordered_set<std::uint32_t> taken;
    if (const auto map = config_->forwardingGroupNameToTcMap())
        for (const auto& member : map->tc()) {
            const bool isOfOthers =
                !earlier.groups.contains(member.key) || found_.contains(*map, member.key);
            if (isOfOthers && !later.groups.contains(member.key)) taken.insert(member.value);
        }
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
    const auto held = config_->forwardingGroupNameToTcMap();
    const auto map = held ? held : ForwardingGroupNameToTcMap::create();
    if (held && earlier.groups.empty())
        found_.note(*config_, Config::kForwardingGroupNameToTcMap.id);
    for (const ForwardingGroup& group : later.groups) {
        if (!earlier.groups.contains(group.name) && map->tc().find(group.name) != nullptr)
            found_.note(*map, group.name);
        map->tcIs(group.name, group.trafficClass);
    }
    if (!held) config_->forwardingGroupNameToTcMapIs(map);
}

void ForwardingGroupWriter::removeGoing(const Difference& difference) {
    const auto& [earlier, later] = difference;
    const auto map = config_->forwardingGroupNameToTcMap();
    if (!map || earlier.groups.empty()) return;
    // One by one, so that whoever uses a group learns that it is gone: a map that goes tells
    // nobody.
    for (const ForwardingGroup& group : earlier.groups)
        if (!later.groups.contains(group.name) && !found_.release(*map, group.name))
            map->tcDel(group.name);
    if (!later.groups.empty()) return;
    if (!found_.release(*config_, Config::kForwardingGroupNameToTcMap.id) && map->tc().empty())
        config_->forwardingGroupNameToTcMapIs(nullptr);
}

}  // namespace QosAgent
