#include "agent/explain/Finding.h"

#include <algorithm>

namespace QosAgent {
namespace {

template <class Thing>
bool isNotInState(const Thing& thing) {
    return thing.state == nullptr && (thing.configured != nullptr || thing.isMade());
}

template <class Thing>
bool isLeftBehind(const Thing& thing) {
    return thing.state != nullptr && thing.configured == nullptr && !thing.isMade();
}

bool hasFirstType(const ClassifierEvidence& classifier) {
    return classifier.state != nullptr && classifier.configured != nullptr &&
           classifier.state->state().type != classifier.configuredFamily();
}

bool hasNoClassMap(const TermEvidence& term) {
    return term.configured != nullptr && term.classMap == nullptr;
}

bool hasNoAccessList(const TermEvidence& term) {
    return (term.state != nullptr || term.configured != nullptr) && term.accessLists.empty();
}

template <class Things, class Holds>
bool isAny(const Things& things, Holds holds) {
    return std::any_of(things.begin(), things.end(), holds);
}

bool hasUnconfiguredList(const TermEvidence& term) {
    return isAny(term.accessLists, [](const auto& list) { return !list.isConfigured; });
}

bool hasNoCountingRule(const TermEvidence& term) {
    return isAny(term.accessLists,
                 [](const auto& list) { return list.isConfigured && !list.counts(); });
}

bool isDecidedByAccessList(const TermEvidence& term) {
    const auto family = term.classifier->configuredFamily();
    const DscpValues configured = dscpValues(term.configured, family);
    return term.state != nullptr && !configured.empty() &&
           isAny(term.accessLists, [](const auto& list) { return list.counts(); }) &&
           dscpValues(term.state, family) != configured;
}

bool hasNoTrafficClass(const TermEvidence& term) {
    return isAny(term.policyMaps, [](const auto& map) { return !map.trafficClass; });
}

bool hasNoForwardingGroup(const TermEvidence& term) {
    return isAny(term.policyMaps,
                 [](const auto& map) { return map.trafficClass && map.targetGroup.empty(); });
}

bool isNotAClass(const TermEvidence& term) {
    return term.classifier->isInPolicyMap() && term.policyMaps.empty();
}

/// While no policy map uses a term, the configured target group is written whenever the configured
/// term is published, and at no other time.
bool isGroupNotWritten(const TermEvidence& term) {
    const Orin::String& configured = targetGroup(term.configured);
    return term.state != nullptr && !configured.empty() && !term.isUsedByPolicyMap() &&
           targetGroup(term.state) != configured;
}

constexpr std::string_view kBoth = "classifier, term";
constexpr std::string_view kClassifier = "classifier";
constexpr std::string_view kTerm = "term";

constexpr Finding kFindings[] = {
    {"not-in-state", kBoth,
     "It is configured, or a class map, an access list or a policy map was made from it, but the "
     "state does not have it.",
     "It is not in the state.",
     "Look at the other findings. If there are none, see that the toggle OCQosClassifierStatePath "
     "is true and that the class map has a match option. A classifier without terms, and a term "
     "without a class map, an access list and a target group, are not in the state.",
     isNotInState<ClassifierEvidence>, isNotInState<TermEvidence>},
    {"left-behind", kBoth,
     "It is in the state, but it is not configured, and no class map, access list or policy map "
     "stands for it.",
     "It is in the state, but nothing stands for it any more.",
     "Create its class map and delete it again: only the end of a class map removes a term or a "
     "classifier from the state.",
     isLeftBehind<ClassifierEvidence>, isLeftBehind<TermEvidence>},
    {"first-type", kClassifier,
     "The type in the state is not the configured one. A classifier that is configured without a "
     "type counts as IPV4.",
     "The type in the state is not the configured one: whoever created the classifier first set "
     "its type, and a type never changes.",
     "Delete the class map that has the classifier's name, if there is one, so that the classifier "
     "is removed and created again; or give the classifier another name.",
     hasFirstType, nullptr},
    {"no-class-map", kTerm, "The term is configured, but no class map was made from it.",
     "No class map was made from the term.",
     "Configure the term again, or create the class map. Without one, nothing removes the term "
     "from the state when the configuration does.",
     nullptr, hasNoClassMap},
    {"no-access-list", kTerm,
     "The term is in the state or configured, but neither an IPv4 nor an IPv6 access list was made "
     "from it.",
     "No access list was made from the term, so none gives it DSCP values.",
     "Configure a DSCP value of the classifier's family, or create the access list. A term that is "
     "to match all traffic needs none.",
     nullptr, hasNoAccessList},
    {"list-not-configured", kTerm,
     "An access list made from the term is a null entry, or has no sub-configuration.",
     "An access list of the term is listed, but not configured.",
     "Configure the rules of the access list, or delete it.", nullptr, hasUnconfiguredList},
    {"no-counting-rule", kTerm,
     "An access list made from the term is configured, but none of its rules gives a DSCP value.",
     "No rule of the access list gives a DSCP value.",
     "See why each rule is ignored: an IPv4 rule must have its DSCP enabled, the mask of an IPv6 "
     "rule must cover the upper six bits, and a sequence number must lead to a rule.",
     nullptr, hasNoCountingRule},
    {"access-list-decides", kTerm,
     "DSCP values are configured, an access list made from the term gives some, and the values in "
     "the state, in the classifier's family, are not the configured ones.",
     "The rules of the access list decide the DSCP values, and they differ from the configured "
     "ones.",
     "Change the rules of the access list, or configure the values that they give.", nullptr,
     isDecidedByAccessList},
    {"no-traffic-class", kTerm,
     "A policy map has a class made from the term, and the class sets no traffic class.",
     "The class in the policy map sets no traffic class, so this policy map gives the term no "
     "target "
     "group.",
     "Set the traffic class in the policy map (action 4) and raise its version, or configure a "
     "target group.",
     nullptr, hasNoTrafficClass},
    {"no-forwarding-group", kTerm,
     "A policy map has a class made from the term, and no forwarding group has the traffic class "
     "that the class sets.",
     "No forwarding group has the traffic class that the policy map sets, so this policy map gives "
     "the term no target group.",
     "Give a forwarding group that traffic class, or set another one in the policy map.", nullptr,
     hasNoForwardingGroup},
    {"not-a-class", kTerm,
     "The classifier is in the name of a policy map, but no policy map has a class made from the "
     "term.",
     "A policy map uses the classifier, but none has a class for the term.",
     "Create the class in the policy map, and raise the policy map's version.", nullptr,
     isNotAClass},
    {"policy-map-decides", kTerm,
     "The term is configured, a policy map uses the classifier or has a class made from the term, "
     "and the target group in the state, or its absence, is not the configured one.",
     "A policy map decides the target group, not the configuration.",
     "Set in the policy map the traffic class of the configured group and raise its version, or "
     "detach the classifier from the interfaces.",
     nullptr, isDecidedByPolicyMap},
    {"group-not-written", kTerm,
     "A target group is configured, the term is in the state, no policy map uses the classifier or "
     "has a class made from the term, and the target group in the state, or its absence, is not "
     "the configured one.",
     "The configured target group was not written again after something else had changed the term "
     "in the state.",
     "Publish the configured term again: touch it, or configure another target group and then this "
     "one.",
     nullptr, isGroupNotWritten},
};

}  // namespace

std::span<const Finding> findingTable() {
    return kFindings;
}

FindingRows findingsOf(const ClassifierEvidence& classifier) {
    FindingRows rows;
    for (const Finding& finding : kFindings)
        if (finding.holdsForClassifier != nullptr && finding.holdsForClassifier(classifier))
            rows.push_back(&finding);
    return rows;
}

FindingRows findingsOf(const TermEvidence& term) {
    FindingRows rows;
    for (const Finding& finding : kFindings)
        if (finding.holdsForTerm != nullptr && finding.holdsForTerm(term)) rows.push_back(&finding);
    return rows;
}

bool isDecidedByPolicyMap(const TermEvidence& term) {
    return term.configured != nullptr && term.isUsedByPolicyMap() &&
           targetGroup(term.state) != targetGroup(term.configured);
}

}  // namespace QosAgent
