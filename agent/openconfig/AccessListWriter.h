#pragma once

#include <vector>

#include "agent/openconfig/Difference.h"
#include "agent/openconfig/Found.h"
#include "platform/Acl/Input/Config.h"

namespace QosAgent {

/// Keeps one access list for each term that matches DSCP values, with one rule for each value. The
/// id of a rule is its sequence number.
class AccessListWriter {
public:
    /// What is passed outlives the writer.
    AccessListWriter(Orin::Ptr<Acl::Input::Config> config, Found& found);

    void removeGoing(const Difference& difference);
    void writeComing(const Difference& difference);

private:
    using Values = std::vector<std::uint8_t>;

    void remove(const TermOfClassifier& earlier);
    void writeLists(Acl::AclType type, const Difference& difference);
    void write(Acl::Input::AclTypeConfig& lists, const TermOfClassifier& later,
               const Values& earlier);
    void writeRules(Acl::AclConfig& list, const Values& earlier, const Values& later);
    void changeRules(Acl::AclSubConfig& rules, Acl::AclType type, const Values& earlier,
                     const Values& later);
    std::vector<std::uint32_t> goingSequences(const Acl::AclSubConfig& rules, const Values& earlier,
                                              const Values& later);

    Orin::Ptr<Acl::Input::Config> config_;
    Found& found_;
};

}  // namespace QosAgent
