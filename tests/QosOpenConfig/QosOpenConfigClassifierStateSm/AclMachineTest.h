#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <utility>

#include "QosOpenConfig/QosOpenConfigClassifierStateSm/AclTypeStateSm.h"
#include "tests/QosOpenConfig/QosOpenConfigClassifierStateSm/MachineTest.h"

namespace QosOc {

/// The fixture of the access-list machines' tests. A rule's id is 100 more than its sequence
/// number.
class AclMachineTest : public MachineTest {
protected:
    using Rules = Orin::Ptr<Acl::AclSubConfig>;
    using List = Orin::Ptr<Acl::AclConfig>;

    static void addRule(const Rules& rules, std::uint32_t sequence, Acl::IpFilter filter) {
        rules->ipRuleByIdIs({sequence + 100}, {filter});
        rules->ruleIdBySequenceIs(sequence, {sequence + 100});
    }
    static void addRule(const Rules& rules, std::uint32_t sequence, Acl::Ip6Filter filter) {
        rules->ip6RuleByIdIs({sequence + 100}, {filter});
        rules->ruleIdBySequenceIs(sequence, {sequence + 100});
    }
    /// IPv4 rules that match these DSCP values, in steps of 10.
    static Rules rulesFor(std::initializer_list<int> dscps) {
        auto rules = Acl::AclSubConfig::create();
        std::uint32_t sequence = 0;
        for (const int dscp : dscps)
            addRule(rules, sequence += 10, Acl::IpFilter{static_cast<std::uint8_t>(dscp), true});
        return rules;
    }
    static List listOf(const Orin::String& name, const Rules& rules,
                       Acl::AclType type = Acl::AclType::ipv4) {
        auto list = Acl::AclConfig::create(name, type);
        list->aclSubConfigIs(rules);
        return list;
    }
    /// Writes conditions as another machine would.
    void writeCondition(const char* classifier, const char* termId, unsigned char dscp) {
        Orin::Vector<unsigned char> values{dscp};
        addClassifierTermCondition(state, classifier, Classifier::Type::IPV4, termId, values);
    }

    static std::string typeLine(const char* line, const std::string& function,
                                const std::string& rest) {
        return machineLine(line, function, "type",
                           "void QosOc::AclTypeStateSm::" + function + rest);
    }
    static std::string listLine(const char* line, const std::string& function) {
        return machineLine(line, function, "list", "void QosOc::AclStateSm::" + function + "()");
    }
    static std::string rulesLine(const char* line, const std::string& function,
                                 const std::string& rest = "") {
        return machineLine(line, function, "rules",
                           "void QosOc::AclSubStateSm::" + function + "()" + rest);
    }
};

/// The fixture of the tests of `AclTypeStateSm`: lists of the IPv4 type.
class AclTypeMachineTest : public AclMachineTest {
protected:
    Orin::Ptr<AclTypeStateSm> start() { return aclTypeStateSmFactory(lists, state); }
    List add(const Orin::String& name, const Rules& rules = nullptr) {
        auto list = listOf(name, rules, lists->aclType());
        lists->aclConfigIs(name, list);
        return list;
    }
    void touch(const Orin::String& name) {
        lists->publishChange(Acl::Input::AclTypeConfig::kAclConfig.id, &name);
    }
    static AclStateSm* child(const AclTypeStateSm& sm, const Orin::String& name) {
        return childOf<AclStateSm>(sm, "aclStateSm", name);
    }

    Orin::Ptr<Acl::Input::AclTypeConfig> lists =
        Acl::Input::AclTypeConfig::create(Acl::AclType::ipv4);
};

}  // namespace QosOc
