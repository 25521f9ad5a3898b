#pragma once

#include <array>

#include "bench/Event.h"

namespace QosBench {

/// What happens to a device with machines, and alike to the floor's.
template <class D>
constexpr std::size_t policyMapsOf(const D& device) {
    return device.policyMaps();
}
template <class D, std::size_t kRules>
constexpr Event<D> ruleAdded(std::string_view name) {
    return {name, verb<D, &D::addRule>, verb<D, &D::giveRules, kRules>, nothing<D>,
            verb<D, &D::removeRule>};
}
template <class D>
inline constexpr std::array kDeviceEvents{
    Event<D>{"class map removed and added",
             [](D& device) {
                 device.removeClassMap();
                 device.addClassMap();
             }},
    Event<D>{"class map published again", verb<D, &D::publishClassMap>},
    Event<D>{"match option changed", verb<D, &D::changeMatch>},
    Event<D>{"version raised, 8 classes, nothing changed", verb<D, &D::raiseVersion>},
    Event<D>{"version raised, 8 classes, 1 group changed", verb<D, &D::raiseVersion>, nothing<D>,
             verb<D, &D::changeClasses, 1>},
    Event<D>{"version raised, 8 classes, 8 groups changed", verb<D, &D::raiseVersion>, nothing<D>,
             verb<D, &D::changeClasses, 8>},
    Event<D>{"policy map removed and added",
             [](D& device) {
                 device.removePolicyMap();
                 device.addPolicyMap();
             }},
    Event<D>{"unused forwarding group changed, a policy map",
             verb<D, &D::changeSpareForwardingGroup>, nothing<D>, nothing<D>, nothing<D>,
             policyMapsOf<D>},
    Event<D>{"used forwarding group changed, a policy map", verb<D, &D::changeUsedForwardingGroup>,
             nothing<D>, nothing<D>, nothing<D>, policyMapsOf<D>},
    Event<D>{"access list of 8 rules changed", verb<D, &D::changeRule>, verb<D, &D::giveRules, 8>},
    Event<D>{"sub-configuration of 8 rules replaced", verb<D, &D::replaceRules>,
             verb<D, &D::giveTwoLists>},
    ruleAdded<D, 10>("rule added to a list of 10"),
    ruleAdded<D, 1000>("rule added to a list of 1000"),
    Event<D>{"configured term's group changed", verb<D, &D::changeConfiguredAction>},
};

/// The life of the machines, for each of them with the state that it writes.
template <class D>
constexpr std::size_t machinesOf(const D& device) {
    return device.machines();
}
template <class D>
inline constexpr std::array kDeviceStarts{
    Event<D>{"start, a machine", verb<D, &D::start>, nothing<D>, nothing<D>, nothing<D>,
             machinesOf<D>},
    Event<D>{"teardown, a machine", verb<D, &D::stop>, nothing<D>, nothing<D>, nothing<D>,
             machinesOf<D>},
    Event<D>{"restart over what is left, a machine", verb<D, &D::start>, nothing<D>, nothing<D>,
             nothing<D>, machinesOf<D>},
};

}  // namespace QosBench
