#pragma once

#include <cstddef>
#include <vector>

#include "QosOpenConfig/QosOpenConfigClassifierStateSm/ClassifierStateSm.h"

namespace QosBench {

/// A device with the root machine over it, trace off. Each of its classifiers has a policy map with
/// a class for each of its terms, and for each term a class map and an access list of one rule.
///
/// The verbs are the events that benches measure. They work on objects in the middle of their
/// collections, and always change something unless they say otherwise.
class Device {
public:
    static constexpr std::size_t kClasses = 8;

    explicit Device(std::size_t classifiers);

    std::size_t size() const noexcept { return pmaps_.size(); }
    const QosOc::State::ClassifiersDir& state() const noexcept { return *state_; }

    /// Gives that many classes of a policy map another traffic class, then raises its version.
    void changePolicyMap(std::size_t changedClasses);
    /// Gives a forwarding group another traffic class; no policy map sets the old or the new one.
    void changeSpareForwardingGroup();
    /// The same for a group that one class of each policy map is sent to: it leaves, or comes back.
    void changeUsedForwardingGroup();

    /// Publishes a class map again, which changes nothing.
    void publishClassMap();
    void removeClassMap();
    void addClassMap();

    /// Replaces the access list of a term by one with that many rules.
    void giveRules(std::size_t rules);
    void addRule();
    /// Takes back what `addRule` added.
    void removeRule();

private:
    void addClassifier(std::size_t index);
    void addTerm(const Orin::String& name);
    Orin::Ptr<Qos::ClassMapStatus> classMap(const Orin::String& name) const;
    void ruleIs(Acl::AclSubConfig& rules, std::uint32_t sequence);

    Orin::Ptr<Qos::Status> status_ = Qos::Status::create();
    Orin::Ptr<Qos::PolicyMapTypeStatus> pmapType_;
    Orin::Ptr<Qos::ClassMapTypeStatus> cmapType_;
    Orin::Ptr<Qos::Input::Config> cliConfig_ = Qos::Input::Config::create();
    Orin::Ptr<Qos::ForwardingGroupNameToTcMap> groups_;
    Orin::Ptr<Acl::Input::Config> aclConfig_ = Acl::Input::Config::create();
    Orin::Ptr<Acl::Input::AclTypeConfig> acls_;
    Orin::Ptr<QosOc::Config::ClassifiersDir> configDir_ = QosOc::Config::ClassifiersDir::create();
    Orin::Ptr<QosOc::State::ClassifiersDir> state_ = QosOc::State::ClassifiersDir::create();
    std::vector<Orin::Ptr<Qos::PolicyMapStatus>> pmaps_;
    std::vector<Orin::String> termNames_;
    Orin::Ptr<Acl::AclSubConfig> rules_;
    std::uint32_t lastSequence_ = 0;
    Orin::Ptr<QosOc::ClassifierStateSm> root_;
};

}  // namespace QosBench
