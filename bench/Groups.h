#pragma once

#include <memory>
#include <span>
#include <string_view>

#include "bench/QosOpenConfig/Device.h"
#include "bench/QosOpenConfig/DeviceEvents.h"

namespace QosBench {

/// Events that happen, in this order, to one subject.
template <class Subject>
struct Group {
    std::string_view name;
    std::string_view side;  ///< `ours`, or `floor` for the events of the same names beside them
    std::unique_ptr<Subject> (*make)(std::size_t size);
    std::span<const Event<Subject>> events;
    /// Each event happens once only, for it leads to the next one's beginning.
    bool isOnce = false;
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

/// All that is measured.
template <class Visit>
void visitGroups(Visit visit) {
    visit(Group<Device>{"events", "ours", startedDevice, kDeviceEvents<Device>});
    visit(Group<Device>{"starts", "ours", loadedDevice, kDeviceStarts<Device>, true});
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
