#pragma once

#include "QosOpenConfig/QosOpenConfigClassifierStateSm/ClassifierStateSm.h"
#include "tests/QosOpenConfig/MachineContract.h"

namespace QosOc {

/// What one of each input makes; see `RootInputs::fill`.
inline constexpr const char* kFilledState =
    "acl IPV4 {10 when ipv4 46}; acl6 IPV6 {10 when ipv6 46}; cmap IPV4; config IPV4 {10 to gold}; "
    "pmap IPV4";

/// The four inputs of the root machine, and hands that fill them.
struct RootInputs {
    static Orin::Ptr<Qos::ClassMapTypeStatus> cmapType(Qos::MapType type, const char* cmapName) {
        const auto made = Qos::ClassMapTypeStatus::create(type);
        const auto cmap = Qos::ClassMapStatus::create(Orin::String(cmapName));
        cmap->matchIs(Qos::ClassMapMatchOption::matchIpAccessGroup, "any");
        made->cmapStatusIs(cmap);
        return made;
    }
    static Orin::Ptr<Qos::PolicyMapTypeStatus> pmapType(Qos::MapType type, const char* pmapName) {
        const auto made = Qos::PolicyMapTypeStatus::create(type);
        made->pmapStatusIs(Qos::PolicyMapStatus::create(Orin::String(pmapName)));
        return made;
    }
    /// A type with one list of one rule.
    static Orin::Ptr<Acl::Input::AclTypeConfig> aclType(Acl::AclType type, const char* aclName) {
        const auto made = Acl::Input::AclTypeConfig::create(type);
        const auto list = Acl::AclConfig::create(Orin::String(aclName), type);
        const auto rules = Acl::AclSubConfig::create();
        if (type == Acl::AclType::ipv6)
            rules->ip6RuleByIdIs({1}, {{46 << 2, 252}});
        else
            rules->ipRuleByIdIs({1}, {{46, true}});
        rules->ruleIdBySequenceIs(10, {1});
        list->aclSubConfigIs(rules);
        made->aclConfigIs(Orin::String(aclName), list);
        return made;
    }
    /// A classifier with one term.
    static Orin::Ptr<Config::Classifier> classifier(const char* name, Classifier::Type type) {
        const auto made = Config::Classifier::create(Orin::String(name));
        made->configIs({name, type});
        const auto terms = Config::Terms::create();
        Config::Term term(Orin::String("10"));
        term.actions = Config::TermActions{"gold"};
        terms->termIs(term);
        made->termsIs(terms);
        return made;
    }

    /// One of each kind; they make the classifiers pmap, cmap, acl and config.
    void fill() const {
        qosStatus->cmapTypeStatusIs(cmapType(Qos::MapType::mapQos, "cmap"));
        qosStatus->pmapTypeStatusIs(pmapType(Qos::MapType::mapQos, "openconfig:pmap:"));
        aclCliConfig->aclTypeConfigIs(aclType(Acl::AclType::ipv4, "openconfig:acl:10"));
        aclCliConfig->aclTypeConfigIs(aclType(Acl::AclType::ipv6, "openconfig:acl6:10"));
        configDir->classifierIs(classifier("config", Classifier::Type::IPV4));
    }
    Orin::Ptr<ClassifierStateSm> rootOver(const StateDir& state) const {
        return ClassifierStateSm::ClassifierStateSmIs(qosStatus, aclCliConfig, qosCliConfig,
                                                      configDir, state);
    }

    Orin::Ptr<Qos::Status> qosStatus = Qos::Status::create();
    Orin::Ptr<Acl::Input::Config> aclCliConfig = Acl::Input::Config::create();
    Orin::Ptr<Qos::Input::Config> qosCliConfig = Qos::Input::Config::create();
    Orin::Ptr<Config::ClassifiersDir> configDir = Config::ClassifiersDir::create();
};

}  // namespace QosOc
