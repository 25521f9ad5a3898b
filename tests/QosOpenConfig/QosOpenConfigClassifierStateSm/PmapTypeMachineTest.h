#pragma once

#include <map>
#include <string>

#include "tests/QosOpenConfig/QosOpenConfigClassifierStateSm/PmapMachineTest.h"

namespace QosOc {

/// The fixture of the tests of `PmapTypeStatusSm`.
class PmapTypeMachineTest : public PmapMachineTest {
protected:
    using Uses = std::map<std::string, unsigned>;

    Orin::Ptr<PmapTypeStatusSm> start() {
        return pmapTypeStatusSmFactory(pmaps, cliConfig, configDir, registry, state);
    }
    Pmap add(const Orin::String& name) {
        auto made = pmapOf(name);
        pmaps->pmapStatusIs(made);
        return made;
    }
    void touch(const Orin::String& name) {
        pmaps->publishChange(Qos::PolicyMapTypeStatus::kPmapStatus.id, &name);
    }
    static PmapStatusSm* child(const PmapTypeStatusSm& sm, const Orin::String& pmapName) {
        return childOf<PmapStatusSm>(sm, "pmapStatusSm", pmapName);
    }

    static std::string handlePmapStatusLine(const std::string& pmapName) {
        return pmapLine("handlePmapStatus", "type",
                        "void QosOc::PmapTypeStatusSm::handlePmapStatus(const String&), "
                        "pmapName = " +
                            pmapName);
    }
    static std::string updateLine(const std::string& name, const std::string& type, bool add) {
        return pmapLine("updateClassifiersWithPmap", "type",
                        kUpdate + ", classifierName = " + name + ", classifierType = " + type +
                            ", add = " + (add ? "true" : "false"));
    }
    static std::string emptyNameLine() {
        return pmapLine("updateClassifiersWithPmap", "type",
                        kUpdate + ", classifierName should not be empty");
    }

    Orin::Ptr<Qos::PolicyMapTypeStatus> pmaps =
        Qos::PolicyMapTypeStatus::create(Qos::MapType::mapQos);

private:
    static inline const std::string kUpdate =
        "void QosOc::PmapTypeStatusSm::updateClassifiersWithPmap(const String&, "
        "QosOc::Classifier::Type, bool)";
};

}  // namespace QosOc
