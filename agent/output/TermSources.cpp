#include "agent/output/TermSources.h"

#include <algorithm>
#include <bitset>
#include <map>

#include "agent/json/Visible.h"
#include "agent/output/Dscp.h"

namespace QosAgent {
namespace {

using Orin::String;
using QosOc::Classifier::Type;
using Rules = std::vector<const RuleEvidence*>;

/// More sequence numbers than these are written as a range.
constexpr std::size_t kMostListed = 8;

Type familyOf(const AccessListEvidence& list) {
    return list.type == Acl::AclType::ipv6 ? Type::IPV6 : Type::IPV4;
}

/// DSCP values without an order.
class DscpMask {
public:
    explicit DscpMask(const DscpValues& values) {
        for (const std::uint8_t value : values)
            bits_.set(value);
    }
    bool has(std::uint8_t value) const { return bits_.test(value); }

private:
    std::bitset<256> bits_;
};

std::string listTitle(const AccessListEvidence& list, const String& name) {
    return std::string(familyOf(list) == Type::IPV6 ? "IPv6" : "IPv4") + " access list " +
           visibleName(name);
}

std::string mapTitle(const PolicyMapEvidence& map) {
    return "policy map " + visibleName(map.policyMap->pmapName()) + " (version " +
           std::to_string(map.policyMap->version()) + ")";
}

/// `10,20`, or `10 to 640` if there are many.
std::string sequencesOf(const Rules& rules) {
    if (rules.size() > kMostListed)
        return std::to_string(rules.front()->sequence) + " to " +
               std::to_string(rules.back()->sequence);
    std::string list;
    for (const RuleEvidence* rule : rules)
        list.append(list.empty() ? "" : ",").append(std::to_string(rule->sequence));
    return list;
}

/// `rule 7 at sequence 10`, `the rules at sequence 10,20` or `64 rules at sequence 10 to 640`.
std::string rulesTitle(const Rules& rules) {
    if (rules.size() == 1)
        return "rule " + std::to_string(rules.front()->id.value) + " at sequence " +
               sequencesOf(rules);
    const bool isListed = rules.size() <= kMostListed;
    return (isListed ? "the rules" : std::to_string(rules.size()) + " rules") + " at sequence " +
           sequencesOf(rules);
}

std::string_view whyIgnored(const RuleEvidence& rule) {
    if (rule.ignored == "missing") return "no such rule";
    if (rule.ignored == "disabled") return "DSCP is not enabled";
    return "the mask does not cover the whole DSCP";
}

std::string dscpOf(const Rules& rules) {
    DscpValues values;
    values.reserve(rules.size());
    for (const RuleEvidence* rule : rules)
        values.push_back(*rule->dscp);
    return "dscp " + dscpText(values);
}

/// Collects the sentences.
class SourceWriter {
public:
    explicit SourceWriter(const TermEvidence& term) : term_(term) {}

    std::vector<std::string> write() {
        for (const AccessListEvidence& list : term_.accessLists)
            accessList(list);
        for (const Type family : {Type::IPV4, Type::IPV6})
            dscpWithoutRule(family);
        configuredDscp();
        for (const PolicyMapEvidence& map : term_.policyMaps)
            policyMap(map);
        targetGroupWithoutPolicyMap();
        configuredTargetGroup();
        classMap();
        return std::move(sentences_);
    }

private:
    void say(std::string sentence) { sentences_.push_back(std::move(sentence)); }
    void accessList(const AccessListEvidence& list);
    void rulesOf(const AccessListEvidence& list, const std::string& title);
    void dscpWithoutRule(Type family);
    void configuredDscp();
    void policyMap(const PolicyMapEvidence& map);
    void targetGroupWithoutPolicyMap();
    void configuredTargetGroup();
    const String& decidingPolicyMap() const;
    void classMap();

    const TermEvidence& term_;
    std::vector<std::string> sentences_;
};

void SourceWriter::accessList(const AccessListEvidence& list) {
    const std::string title = listTitle(list, term_.objName);
    if (!list.isConfigured) return say("The " + title + " is listed, but not configured.");
    if (list.rules.empty()) return say("The " + title + " has no rules.");
    rulesOf(list, title);
}

/// A rule whose value is not in the state was changed without being published, or the list of the
/// other family decides, or the term is not in the state at all.
void SourceWriter::rulesOf(const AccessListEvidence& list, const std::string& title) {
    const DscpMask inState(dscpValues(term_.state, familyOf(list)));
    Rules inForce;
    Rules without;
    std::map<std::string_view, Rules> ignored;
    for (const RuleEvidence& rule : list.rules)
        if (!rule.dscp)
            ignored[whyIgnored(rule)].push_back(&rule);
        else
            (inState.has(*rule.dscp) ? inForce : without).push_back(&rule);
    if (!inForce.empty())
        say(dscpOf(inForce) + (inForce.size() == 1 ? " comes" : " come") + " from " +
            rulesTitle(inForce) + " of the " + title + ".");
    if (!without.empty())
        say("Of the " + title + ", " + rulesTitle(without) +
            (without.size() == 1 ? " gives " : " give ") + dscpOf(without) + ", which " +
            (without.size() == 1 ? "is" : "are") + " not in force.");
    for (const auto& [reason, rules] : ignored)
        say("Of the " + title + ", " + rulesTitle(rules) +
            (rules.size() == 1 ? " gives" : " give") + " no DSCP: " + std::string(reason) + ".");
}

void SourceWriter::dscpWithoutRule(Type family) {
    DscpValues given;
    for (const AccessListEvidence& list : term_.accessLists)
        for (const RuleEvidence& rule : list.rules)
            if (familyOf(list) == family && rule.dscp) given.push_back(*rule.dscp);
    const DscpMask isGiven(given);
    DscpValues values = dscpValues(term_.state, family);
    values.erase(std::remove_if(values.begin(), values.end(),
                                [&](std::uint8_t value) { return isGiven.has(value); }),
                 values.end());
    if (values.empty()) return;
    const std::string dscp = "dscp " + dscpText(values);
    if (term_.accessLists.empty())
        return say(dscp + " was left in the state by an access list that is gone.");
    say(dscp + (values.size() == 1 ? " is" : " are") + " in force, but no rule gives " +
        (values.size() == 1 ? "it" : "them") + " now.");
}

void SourceWriter::configuredDscp() {
    const Type family = term_.classifier->configuredFamily();
    const DscpValues configured = dscpValues(term_.configured, family);
    const DscpValues state = dscpValues(term_.state, family);
    if (configured.empty() || configured == state) return;
    const auto are = [](const DscpValues& values) { return values.size() > 1 ? " are " : " is "; };
    say("dscp " + dscpText(configured) + are(configured) + "configured, " +
        (state.empty() ? "none" : dscpText(state)) + are(state) + "in force.");
}

void SourceWriter::policyMap(const PolicyMapEvidence& map) {
    const std::string title = mapTitle(map);
    if (!map.trafficClass)
        return say("In " + title + " the class of the term sets no traffic class.");
    const std::string source =
        "traffic class " + std::to_string(*map.trafficClass) + ", which " + title + " sets";
    if (map.targetGroup.empty()) return say("No forwarding group has " + source + ".");
    const std::string group = "Target group " + visibleName(map.targetGroup);
    if (map.targetGroup == targetGroup(term_.state))
        return say(group + " comes from " + source + ".");
    say(group + " has " + source + ", but it is not in force.");
}

void SourceWriter::targetGroupWithoutPolicyMap() {
    const String& group = targetGroup(term_.state);
    const auto& maps = term_.policyMaps;
    if (group.empty() || std::any_of(maps.begin(), maps.end(),
                                     [&](const auto& map) { return map.targetGroup == group; }))
        return;
    const std::string title = "Target group " + visibleName(group);
    if (targetGroup(term_.configured) == group && !term_.classifier->isInPolicyMap())
        return say(title + " comes from the configuration.");
    if (term_.isUsedByPolicyMap())
        return say(title + " is in force, but no policy map gives it now.");
    if (term_.configured == nullptr)
        say(title + " was left in the state by a policy map that is gone.");
}

void SourceWriter::configuredTargetGroup() {
    const String& configured = targetGroup(term_.configured);
    const String& state = targetGroup(term_.state);
    if (term_.configured == nullptr || configured == state) return;
    std::string text =
        (configured.empty() ? "No target group" : "Target group " + visibleName(configured)) +
        " is configured, " + (state.empty() ? "none" : visibleName(state)) + " is in force";
    if (term_.isUsedByPolicyMap())
        text += ": policy map " + visibleName(decidingPolicyMap()) + " has the classifier";
    say(text + ".");
}

/// Precondition: a policy map uses the term.
const String& SourceWriter::decidingPolicyMap() const {
    if (!term_.policyMaps.empty()) return term_.policyMaps[0].policyMap->pmapName();
    const MadeFromClassifier& made = *term_.classifier->made;
    return made.ipv4PolicyMaps.empty() ? *made.ipv6PolicyMaps.begin()
                                       : *made.ipv4PolicyMaps.begin();
}

void SourceWriter::classMap() {
    if (term_.classMap == nullptr) return;
    std::map<Qos::ClassMapMatchOption, String> match;
    for (const auto& member : term_.classMap->match())
        match.emplace(member.key, member.value);
    std::string text = "Class map " + visibleName(term_.objName);
    if (match.empty()) text += " has no match option";
    std::string_view before = " has ";
    for (const auto& [option, matched] : match) {
        text.append(before).append(Vex::enumText(option)).append(" ").append(visibleName(matched));
        before = ", ";
    }
    say(text + ".");
}

}  // namespace

std::vector<std::string> sourcesOf(const TermEvidence& term) {
    return SourceWriter(term).write();
}

}  // namespace QosAgent
