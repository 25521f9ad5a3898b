#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "QosOpenConfig/QosOpenConfigClassifierStateSm/ClassifierStateSm.h"

namespace QosBench {

/// A device with the root machine over it, trace off. Each classifier is configured and has a
/// policy map with a class for each of its terms, and for each term a class map and an access list
/// of one rule; one more classifier is configured only.
///
/// The verbs are the events that are measured. They happen to a classifier in the middle, which has
/// eight terms, and to its first term. Each changes something unless it says otherwise.
class Device {
public:
    static constexpr std::size_t kClasses = 8;

    /// The database, with no machine over it. The classifier in the middle has eight terms anyway.
    explicit Device(std::size_t classifiers, std::size_t termsEach = 1);

    std::size_t policyMaps() const noexcept { return pmapType_->pmapStatus().size(); }
    std::size_t terms() const noexcept { return cmapType_->cmapStatus().size(); }
    /// Those that a start makes, the root and its type machines left out.
    std::size_t machines() const noexcept { return 3 * terms() + 3 * policyMaps() + 2; }
    /// The terms of the classifier in the middle and of the one that is configured only, a line
    /// each.
    std::string stateText() const;

    /// Writes what the machines will write, so that they find it there.
    void writeState();
    /// The root machine with all below it; finds there what was published before.
    void start();
    /// Destroys the machines; what they published stays.
    void stop() { root_ = nullptr; }
    /// Subscribes to the terms of the classifier in the middle.
    void watchState();

    /// Gives that many classes of the policy map another traffic class.
    void changeClasses(std::size_t classes);
    /// Raises the version of the policy map: its machine reads the classes again.
    void raiseVersion();
    void removePolicyMap();
    void addPolicyMap();

    /// Gives a forwarding group another traffic class; no policy map sets the old or the new one.
    void changeSpareForwardingGroup();
    /// The same for the group that the first class of each policy map is sent to: it leaves, or
    /// comes back.
    void changeUsedForwardingGroup();

    /// Publishes the class map again, which changes nothing.
    void publishClassMap();
    void removeClassMap();
    void addClassMap();
    /// Lets the class map match another access list.
    void changeMatch();

    /// Replaces the access list by one with that many rules.
    void giveRules(std::size_t rules);
    void addRule();
    /// Takes back what `addRule` added.
    void removeRule();
    /// Puts another rule in the place of the last one.
    void changeRule();
    /// Makes two lists of eight rules for `replaceRules` to choose from.
    void giveTwoLists();
    void replaceRules();

    /// Sends the first term of the classifier that is configured only to another group.
    void changeConfiguredAction();

private:
    Orin::Ptr<Qos::PolicyMapStatus> addClassifier(std::size_t index, std::size_t terms);
    void workOn(const Orin::Ptr<Qos::PolicyMapStatus>& pmap);
    void addTerm(const Orin::String& name);
    void addConfiguredClassifier();
    Orin::Ptr<Qos::ClassMapStatus> classMap(const Orin::String& name) const;

    Orin::Ptr<Qos::Status> status_ = Qos::Status::create();
    Orin::Ptr<Qos::PolicyMapTypeStatus> pmapType_;
    Orin::Ptr<Qos::ClassMapTypeStatus> cmapType_;
    Orin::Ptr<Qos::Input::Config> cliConfig_ = Qos::Input::Config::create();
    Orin::Ptr<Qos::ForwardingGroupNameToTcMap> groups_;
    Orin::Ptr<Acl::Input::Config> aclConfig_ = Acl::Input::Config::create();
    Orin::Ptr<Acl::Input::AclTypeConfig> acls_;
    Orin::Ptr<QosOc::Config::ClassifiersDir> configDir_ = QosOc::Config::ClassifiersDir::create();
    Orin::Ptr<QosOc::State::ClassifiersDir> state_ = QosOc::State::ClassifiersDir::create();
    /// What the verbs work on.
    Orin::String classifierName_;
    Orin::Ptr<Qos::PolicyMapStatus> pmap_;
    std::vector<Orin::String> termNames_;
    Orin::Ptr<Qos::ClassMapStatus> cmap_;
    Orin::Ptr<Acl::AclConfig> acl_;
    Orin::Ptr<Acl::AclSubConfig> rules_;
    Orin::Ptr<Acl::AclSubConfig> otherRules_;
    std::uint32_t lastSequence_ = 1;
    Orin::Ptr<QosOc::Config::Terms> configuredTerms_;
    QosOc::Config::Term configuredTerm_[2];
    Orin::String usedGroup_;
    Orin::String spareGroup_;
    bool isAlternate_ = false;
    Orin::Subscriber stateWatcher_;
    Orin::Ptr<QosOc::ClassifierStateSm> root_;
};

}  // namespace QosBench
