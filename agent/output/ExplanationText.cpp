#include "agent/output/ExplanationText.h"

#include <algorithm>
#include <map>

#include "agent/json/Visible.h"
#include "agent/output/Dscp.h"
#include "agent/output/Folding.h"
#include "agent/output/MatchText.h"

namespace QosAgent {
namespace {

using Orin::String;
using QosOc::Classifier::Type;

constexpr std::size_t kWidest = 80;
constexpr std::size_t kIndent = 2;

std::string listed(const std::vector<std::uint32_t>& numbers) {
    std::string list;
    for (const std::uint32_t number : numbers)
        list.append(list.empty() ? "" : ",").append(std::to_string(number));
    return list;
}

std::string listTitle(const AccessListEvidence& list, const String& name) {
    return std::string(list.type == Acl::AclType::ipv6 ? "IPv6" : "IPv4") + " access list " +
           visibleName(name);
}

/// `rule 7 at sequence 10`, or `the rules at sequence 10,20`.
std::string rulesTitle(const std::vector<const RuleEvidence*>& rules) {
    const RuleEvidence& first = *rules.front();
    if (rules.size() == 1)
        return "rule " + std::to_string(first.id.value) + " at sequence " +
               std::to_string(first.sequence);
    std::vector<std::uint32_t> sequences;
    sequences.reserve(rules.size());
    for (const RuleEvidence* rule : rules)
        sequences.push_back(rule->sequence);
    return "the rules at sequence " + listed(sequences);
}

std::string_view whyIgnored(const RuleEvidence& rule) {
    if (rule.ignored == "missing") return "no such rule";
    if (rule.ignored == "disabled") return "DSCP is not enabled";
    return "the mask does not cover the whole DSCP";
}

/// What a term matches and where it goes, in a few words.
std::string summaryOf(const TermEvidence& term) {
    if (term.state == nullptr) return "not in the state";
    std::string summary =
        matchText(Vex::enumText(term.classifier->state->state().type),
                  dscpValues(term.state, Type::IPV4), dscpValues(term.state, Type::IPV6));
    if (summary.empty()) summary = "no dscp";
    const String& group = targetGroup(term.state);
    return summary + (group.empty() ? ", no target group" : ", target group " + visibleName(group));
}

/// Writes an explanation line by line.
class ExplanationWriter {
public:
    explicit ExplanationWriter(const Terminal& terminal)
        : width_(terminal.isThere() ? std::min(terminal.columns, kWidest) : kWidest),
          hasColour_(terminal.hasColour) {}

    std::string write(const Explanation& explanation);

private:
    void head(const std::string& text) { line(text, kBold, text.size()); }
    /// A sentence, folded; of its first line the first `painted` bytes are in that colour.
    void line(const std::string& text, std::string_view colour = {}, std::size_t painted = 0);
    void nothingFound(const Explanation& explanation);
    void classifierHead(const Explanation& explanation);
    void finding(const Finding& finding, bool hasAdvice);
    void wholeTerm(const TermExplanation& explanation);
    void shortTerm(const TermExplanation& explanation);
    void accessList(const TermEvidence& term, const AccessListEvidence& list);
    void dscpSource(const TermEvidence& term);
    void targetGroupSource(const PolicyMapEvidence& map);
    void configuredTargetGroup(const TermEvidence& term);
    void configuredDscp(const TermEvidence& term);
    void classMap(const TermEvidence& term);

    std::string text_;
    std::size_t width_;
    std::size_t margin_ = 0;  ///< spaces before each line
    bool hasColour_;
};

std::string ExplanationWriter::write(const Explanation& explanation) {
    classifierHead(explanation);
    for (const Finding* row : explanation.findings)
        finding(*row, true);
    if (explanation.askedTerm && explanation.terms.empty() && explanation.evidence->isKnown())
        line("Nobody knows a term " + visibleName(*explanation.askedTerm) + " of this classifier.");
    for (const TermExplanation& term : explanation.terms)
        explanation.askedTerm ? wholeTerm(term) : shortTerm(term);
    nothingFound(explanation);
    text_.pop_back();  // the last line end
    return std::move(text_);
}

void ExplanationWriter::nothingFound(const Explanation& explanation) {
    const auto& terms = explanation.terms;
    const bool isFound = !explanation.findings.empty() ||
                         std::any_of(terms.begin(), terms.end(),
                                     [](const auto& term) { return !term.findings.empty(); });
    if (explanation.isKnown() && !isFound) line("Nothing differs from what is configured.");
}

void ExplanationWriter::line(const std::string& text, std::string_view colour,
                             std::size_t painted) {
    std::vector<std::string> lines =
        folded(text, width_ - std::min(margin_, width_ / 2), kIndent, " ");
    painted = std::min(painted, lines[0].size());
    if (hasColour_ && painted != 0) lines[0].insert(painted, kPlain).insert(0, colour);
    for (std::string& each : lines) {
        each.erase(each.find_last_not_of(' ') + 1);
        text_.append(margin_, ' ').append(each) += '\n';
    }
}

void ExplanationWriter::classifierHead(const Explanation& explanation) {
    const ClassifierEvidence& classifier = *explanation.evidence;
    const std::string name = "classifier " + visibleName(classifier.name);
    if (!classifier.isKnown()) return line("Nobody knows a " + name + ".");
    const bool isInState = classifier.state != nullptr;
    head(name +
         (isInState ? ", " + Vex::enumText(classifier.state->state().type) : ", not in the state"));
}

void ExplanationWriter::finding(const Finding& finding, bool hasAdvice) {
    std::string text(finding.code);
    text.append(": ").append(finding.sentence);
    if (hasAdvice) text.append(" ").append(finding.advice);
    line(text, kBoldMagenta, finding.code.size() + 1);
}

void ExplanationWriter::shortTerm(const TermExplanation& explanation) {
    const TermEvidence& term = explanation.evidence;
    const std::string name = "term " + visibleName(term.id) + ":";
    line(name + " " + summaryOf(term), kBold, name.size());
    margin_ = kIndent;
    for (const Finding* row : explanation.findings)
        finding(*row, false);
    margin_ = 0;
}

void ExplanationWriter::wholeTerm(const TermExplanation& explanation) {
    const TermEvidence& term = explanation.evidence;
    head("term " + visibleName(term.id) + (term.state == nullptr ? ", not in the state" : ""));
    text_ += '\n';
    dscpSource(term);
    configuredDscp(term);
    for (const PolicyMapEvidence& map : term.policyMaps)
        targetGroupSource(map);
    configuredTargetGroup(term);
    classMap(term);
    if (!explanation.findings.empty()) text_ += '\n';
    for (const Finding* row : explanation.findings)
        finding(*row, true);
}

void ExplanationWriter::dscpSource(const TermEvidence& term) {
    for (const AccessListEvidence& list : term.accessLists)
        accessList(term, list);
    if (term.state == nullptr || !term.accessLists.empty()) return;
    for (const Type family : {Type::IPV4, Type::IPV6}) {
        const DscpValues values = dscpValues(term.state, family);
        if (!values.empty())
            line("dscp " + dscpText(values) +
                 " was left in the state by an access list that is gone.");
    }
}

void ExplanationWriter::accessList(const TermEvidence& term, const AccessListEvidence& list) {
    const std::string title = listTitle(list, term.objName);
    if (!list.isConfigured) return line("The " + title + " is listed, but not configured.");
    if (list.rules.empty()) return line("The " + title + " has no rules.");
    DscpValues values;
    std::vector<const RuleEvidence*> counting;
    std::map<std::string_view, std::vector<const RuleEvidence*>> ignored;
    for (const RuleEvidence& rule : list.rules) {
        (rule.dscp ? counting : ignored[whyIgnored(rule)]).push_back(&rule);
        if (rule.dscp) values.push_back(*rule.dscp);
    }
    if (!counting.empty())
        line("dscp " + dscpText(values) + (values.size() == 1 ? " comes" : " come") + " from " +
             rulesTitle(counting) + " of the " + title + ".");
    for (const auto& [reason, rules] : ignored)
        line("Of the " + title + ", " + rulesTitle(rules) +
             (rules.size() == 1 ? " gives" : " give") + " no DSCP: " + std::string(reason) + ".");
}

void ExplanationWriter::configuredDscp(const TermEvidence& term) {
    const Type family = term.classifier->configuredFamily();
    const DscpValues configured = dscpValues(term.configured, family);
    const DscpValues state = dscpValues(term.state, family);
    if (configured.empty() || configured == state) return;
    const auto are = [](const DscpValues& values) { return values.size() > 1 ? " are " : " is "; };
    line("dscp " + dscpText(configured) + are(configured) + "configured, " +
         (state.empty() ? "none" : dscpText(state)) + are(state) + "in force.");
}

void ExplanationWriter::targetGroupSource(const PolicyMapEvidence& map) {
    const std::string title = "policy map " + visibleName(map.policyMap->pmapName()) +
                              " (version " + std::to_string(map.policyMap->version()) + ")";
    if (!map.trafficClass)
        return line("In " + title + " the class of the term sets no traffic class.");
    const std::string source =
        "traffic class " + std::to_string(*map.trafficClass) + ", which " + title + " sets.";
    if (map.targetGroup.empty()) return line("No forwarding group has " + source);
    line("Target group " + visibleName(map.targetGroup) + " comes from " + source);
}

void ExplanationWriter::configuredTargetGroup(const TermEvidence& term) {
    const String& configured = targetGroup(term.configured);
    const String& state = targetGroup(term.state);
    if (term.configured == nullptr) {
        if (!state.empty() && term.policyMaps.empty())
            line("Target group " + visibleName(state) +
                 " was left in the state by a policy map that is gone.");
        return;
    }
    if (configured == state) {
        if (!state.empty() && term.policyMaps.empty())
            line("Target group " + visibleName(state) + " comes from the configuration.");
        return;
    }
    std::string text =
        (configured.empty() ? "No target group" : "Target group " + visibleName(configured)) +
        " is configured, " + (state.empty() ? "none" : visibleName(state)) + " is in force";
    if (isDecidedByPolicyMap(term)) {
        const MadeFromClassifier& made = *term.classifier->made;
        const String& name = !term.policyMaps.empty() ? term.policyMaps[0].policyMap->pmapName()
                             : made.ipv4PolicyMaps.empty() ? *made.ipv6PolicyMaps.begin()
                                                           : *made.ipv4PolicyMaps.begin();
        text += ": policy map " + visibleName(name) + " has the classifier";
    }
    line(text + ".");
}

void ExplanationWriter::classMap(const TermEvidence& term) {
    if (term.classMap == nullptr) return;
    std::map<Qos::ClassMapMatchOption, String> match;
    for (const auto& member : term.classMap->match())
        match.emplace(member.key, member.value);
    std::string text = "Class map " + visibleName(term.objName);
    if (match.empty()) text += " has no match option";
    std::string_view before = " has ";
    for (const auto& [option, matched] : match) {
        text.append(before).append(Vex::enumText(option)).append(" ").append(visibleName(matched));
        before = ", ";
    }
    line(text + ".");
}

}  // namespace

std::string explanationText(const Explanation& explanation, const Terminal& terminal) {
    return ExplanationWriter(terminal).write(explanation);
}

}  // namespace QosAgent
