#pragma once

#include <memory>
#include <span>
#include <string_view>

#include "bench/QosOpenConfig/Device.h"
#include "bench/QosOpenConfig/DeviceEvents.h"
#include "bench/QosOpenConfig/RuleLoad.h"
#include "bench/agent/Documents.h"
#include "bench/floor/LeanDevice.h"
#include "bench/floor/LeanPrimitives.h"
#include "bench/floor/NodeRules.h"

namespace QosBench {

/// Whose events: the system's, those of a lean program that does the same work, and, for rules,
/// those of a program that keeps them in tree and hash nodes.
inline constexpr std::string_view kOurs = "ours";
inline constexpr std::string_view kFloor = "floor";
inline constexpr std::string_view kNodes = "nodes";

/// Events that happen, in this order, to one subject.
template <class Subject>
struct Group {
    std::string_view name;
    std::string_view side;
    std::unique_ptr<Subject> (*make)(std::size_t size);
    std::span<const Event<Subject>> events;
    /// How often an event happens before it is counted, and then: twice, for many go to and fro.
    /// Those of a group that happen once only lead from one to the next.
    int warmUps = 2;
    int runs = 2;
};

/// A device of that many classifiers, with its machines.
template <class D>
std::unique_ptr<D> startedDevice(std::size_t classifiers) {
    auto device = std::make_unique<D>(classifiers);
    device->start();
    device->watchState();
    return device;
}
/// A device of that many terms, before its machines start.
template <class D>
std::unique_ptr<D> loadedDevice(std::size_t terms) {
    return std::make_unique<D>(terms / D::kClasses, D::kClasses);
}

template <class Subject>
std::unique_ptr<Subject> made(std::size_t size) {
    return std::make_unique<Subject>(size);
}

template <class D, class Visit>
void visitRuleLoads(std::string_view side, Visit& visit) {
    visit(Group<RuleLoad<D>>{"rules", side, made, kRuleLoads<RuleLoad<D>>, 0, 1});
}

/// All that is measured, the floor's after ours.
template <class Visit>
void visitGroups(Visit visit) {
    visit(Group<Device>{"events", kOurs, startedDevice, kDeviceEvents<Device>});
    visit(Group<LeanDevice>{"events", kFloor, startedDevice, kDeviceEvents<LeanDevice>});
    visit(Group<Device>{"starts", kOurs, loadedDevice, kDeviceStarts<Device>, 0, 1});
    visit(Group<LeanDevice>{"starts", kFloor, loadedDevice, kDeviceStarts<LeanDevice>, 0, 1});
    visitRuleLoads<Device>(kOurs, visit);
    visitRuleLoads<LeanDevice>(kFloor, visit);
    visitRuleLoads<NodeRules>(kNodes, visit);
    visit(Group<Primitives>{"primitives", kOurs, made, kPrimitiveEvents<Primitives>});
    visit(Group<LeanPrimitives>{"primitives", kFloor, made, kPrimitiveEvents<LeanPrimitives>});
    visit(Group<Documents>{"documents", kOurs, made, kDocumentEvents, 1, 1});
    visit(Group<Documents>{"edits", kOurs, made, kEditEvents});
    visit(Group<Documents>{"explain", kOurs, made, kExplainEvents});
}

/// Visits the groups of that name; false if there is none.
template <class Visit>
bool visitGroupsNamed(std::string_view name, Visit visit) {
    bool isKnown = false;
    visitGroups([&](const auto& group) {
        if (group.name != name) return;
        isKnown = true;
        visit(group);
    });
    return isKnown;
}

}  // namespace QosBench
