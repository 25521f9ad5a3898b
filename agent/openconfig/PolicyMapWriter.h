#pragma once

#include "agent/openconfig/Difference.h"
#include "agent/openconfig/Ownership.h"
#include "platform/Qos/Status.h"

namespace QosAgent {

/// Keeps one policy map for each pair of attached classifiers, with a class for each of their
/// terms.
class PolicyMapWriter {
public:
    /// What is passed outlives the writer.
    PolicyMapWriter(Orin::Ptr<Qos::Status> status, Ownership& ownership);

    void writeComing(const Difference& difference);
    void removeGoing(const Difference& difference);

private:
    void write(Qos::PolicyMapTypeStatus& pmaps, const AttachedPair& pair,
               const Difference& difference);
    void change(Qos::PolicyMapStatus& pmap, const AttachedPair& pair, const Difference& difference);
    /// True if a class changed.
    bool writeClasses(Qos::PolicyMapStatus& pmap, const AttachedPair& pair,
                      const Difference& difference);
    bool removeClasses(Qos::PolicyMapStatus& pmap, const AttachedPair& pair,
                       const Difference& difference);
    bool writeClass(Qos::PolicyMapStatus& pmap, const TermOfClassifier& of,
                    std::optional<std::uint32_t> trafficClass,
                    const std::optional<TermOfClassifier>& earlier);
    void raiseVersion(Qos::PolicyMapStatus& pmap);
    bool removeClass(Qos::PolicyMapStatus& pmap, const TermOfClassifier& of);
    void remove(Qos::PolicyMapTypeStatus& pmaps, const AttachedPair& pair,
                const Difference& difference);

    Orin::Ptr<Qos::Status> status_;
    Ownership& ownership_;
};

}  // namespace QosAgent
