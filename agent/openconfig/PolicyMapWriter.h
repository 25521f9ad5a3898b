#pragma once

#include "agent/openconfig/Difference.h"
#include "agent/openconfig/Found.h"
#include "platform/Qos/Status.h"

namespace QosAgent {

/// Keeps one policy map for each pair of attached classifiers, with a class for each of their
/// terms.
class PolicyMapWriter {
public:
    /// What is passed outlives the writer.
    PolicyMapWriter(Orin::Ptr<Qos::Status> status, Found& found);

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
    void remove(Qos::PolicyMapTypeStatus& pmaps, const AttachedPair& pair,
                const Difference& difference);

    Orin::Ptr<Qos::Status> status_;
    Found& found_;
};

}  // namespace QosAgent
