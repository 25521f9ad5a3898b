#pragma once

#include "agent/openconfig/Difference.h"
#include "agent/openconfig/Ownership.h"
#include "platform/Qos/Status.h"

namespace QosAgent {

/// Keeps one class map for each term, which matches the access list of the term's name.
class ClassMapWriter {
public:
    /// What is passed outlives the writer.
    ClassMapWriter(Orin::Ptr<Qos::Status> status, Ownership& ownership);

    void writeComing(const Difference& difference);
    void removeGoing(const Difference& difference);

private:
    void write(Qos::ClassMapTypeStatus& classMaps, const TermOfClassifier& later,
               const std::optional<TermOfClassifier>& earlier);
    void change(Qos::ClassMapStatus& classMap, const TermOfClassifier& later,
                const std::optional<TermOfClassifier>& earlier);
    void remove(Qos::ClassMapTypeStatus& classMaps, const TermOfClassifier& earlier);

    Orin::Ptr<Qos::Status> status_;
    Ownership& ownership_;
};

}  // namespace QosAgent
