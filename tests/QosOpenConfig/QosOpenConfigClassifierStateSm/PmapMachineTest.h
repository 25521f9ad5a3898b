#pragma once

#include <cstdint>
#include <initializer_list>
#include <utility>

#include "QosOpenConfig/QosOpenConfigClassifierStateSm/PmapTypeStatusSm.h"
#include "tests/QosOpenConfig/QosOpenConfigClassifierStateSm/MachineTest.h"

namespace QosOc {

/// The fixture of the policy-map machines' tests: the groups gold (0), silver (1) and lead (2).
class PmapMachineTest : public MachineTest {
protected:
    using Pmap = Orin::Ptr<Qos::PolicyMapStatus>;

    PmapMachineTest() {
        groups->tcIs("gold", 0);
        groups->tcIs("silver", 1);
        groups->tcIs("lead", 2);
        cliConfig->forwardingGroupNameToTcMapIs(groups);
    }
    static Qos::PolicyMapClass classWithAction(std::uint32_t action, std::uint32_t value) {
        Qos::PolicyMapClass made;
        made.action.is(action, value);
        return made;
    }
    /// A class that sets a traffic class.
    static Qos::PolicyMapClass toTc(std::uint32_t tc) { return classWithAction(4, tc); }

    /// A policy map of version 7 with classes by class-map name.
    static Pmap pmapOf(
        const Orin::String& name,
        std::initializer_list<std::pair<const char*, Qos::PolicyMapClass>> classes = {}) {
        auto made = Qos::PolicyMapStatus::create(name);
        for (const auto& [cmapName, policyMapClass] : classes)
            made->classIs(cmapName, policyMapClass);
        made->versionIs(7);
        return made;
    }
    static void raiseVersion(const Pmap& pmap) { pmap->versionIs(pmap->version() + 1); }

    Orin::Ptr<Qos::ForwardingGroupNameToTcMap> groups = Qos::ForwardingGroupNameToTcMap::create();
    Orin::Ptr<Qos::Input::Config> cliConfig = Qos::Input::Config::create();
};

}  // namespace QosOc
