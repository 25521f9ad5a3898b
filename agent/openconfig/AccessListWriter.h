#pragma once

#include <vector>

#include "agent/openconfig/Difference.h"
#include "agent/openconfig/Ownership.h"
#include "platform/Acl/Input/Config.h"

namespace QosAgent {

/// Keeps one access list for each term that matches DSCP values, with one rule for each value. The
/// id of a rule is its sequence number.
class AccessListWriter {
public:
    /// What is passed outlives the writer.
    AccessListWriter(Orin::Ptr<Acl::Input::Config> config, Ownership& ownership);

    void removeGoing(const Difference& difference);
    void writeComing(const Difference& difference);

private:
    using Values = std::vector<std::uint8_t>;
    /// The rules of a list, and where they are.
    struct ListOfRules {
        Acl::AclSubConfig& rules;
        Acl::AclType type;
        const Place& place;
    };

    void remove(const TermOfClassifier& earlier);
    void removeParts(Acl::Input::AclTypeConfig& lists, Acl::AclConfig& list, const Place& place,
                     const Values& earlier);
    void writeLists(Acl::AclType type, const Difference& difference);
    void write(Acl::Input::AclTypeConfig& lists, const TermOfClassifier& later,
               const Values& earlier);
    void describe(const Place& place, bool isNullEntry, bool wasDescribed);
    void writeRules(Acl::AclConfig& list, const Place& place, const Values& earlier,
                    const Values& later);
    void changeRules(const ListOfRules& list, const Values& earlier, const Values& later);
    void describeRules(const ListOfRules& list, const Values& earlier, const Values& later);

    Orin::Ptr<Acl::Input::Config> config_;
    Ownership& ownership_;
};

}  // namespace QosAgent
