#include "tests/model/PolicyMaps.h"

#include <algorithm>

namespace Model {
namespace {

constexpr const char* kSource =
    "OpenConfigQosClfStateSm/8 /src/QosOpenConfig/QosOpenConfigClassifierStateSm";

constexpr const char* kUpdateActions =
    "QosOc::ClassifierMetaData::Ptr QosOc::PmapStatusSm::updateClassifierTermActions()";
constexpr const char* kUpdateUses =
    "void QosOc::PmapTypeStatusSm::updateClassifiersWithPmap(const String&, "
    "QosOc::Classifier::Type, bool)";
constexpr const char* kHandleVersion = "void QosOc::PmapStatusSm::handlePmapStatusVersionUpdate()";
constexpr const char* kPrepareToDie = "void QosOc::PmapStatusSm::doPrepareToDie()";

const Point kTypeInit{kSource, 0, "handleInitialized",
                      "void QosOc::PmapTypeStatusSm::handleInitialized()"};
const Point kPolicyMap{kSource, 0, "handlePmapStatus",
                       "void QosOc::PmapTypeStatusSm::handlePmapStatus(const String&)"};
const Point kUse{kSource, 0, "updateClassifiersWithPmap", kUpdateUses};
const Point kNoUse{kSource, 0, "updateClassifiersWithPmap", kUpdateUses, ": empty"};
const Point kTypeDie{kSource, 0, "doPrepareToDie",
                     "void QosOc::PmapTypeStatusSm::doPrepareToDie()"};
const Point kInit{kSource, 0, "handleInitialized", "void QosOc::PmapStatusSm::handleInitialized()"};
const Point kDie{kSource, 0, "doPrepareToDie", kPrepareToDie};
const Point kNotMine{kSource, 0, "doPrepareToDie", kPrepareToDie, ": another's"};
const Point kUpdate{kSource, 0, "updateClassifierTermActions", kUpdateActions};
const Point kClass{kSource, 0, "updateClassifierTermActions", kUpdateActions, ": a class"};
const Point kVersion{kSource, 0, "handlePmapStatusVersionUpdate", kHandleVersion};
const Point kStale{kSource, 0, "handlePmapStatusVersionUpdate", kHandleVersion, ": stale"};
const Point kForeign{kSource, 0, "handlePmapStatusVersionUpdate", kHandleVersion, ": foreign"};
const Point kGroups{kSource, 0, "handleForwardingGroupNameToTcMap",
                    "void QosOc::PmapStatusSm::handleForwardingGroupNameToTcMap()"};

constexpr const char* kName = ", pmapName = ";

std::string groupOf(const std::string& trafficClass, const Ref& groups, Wrong wrong) {
    if (!groups) {
        rule<"target group: no map">();
        return {};
    }
    std::vector<std::string> names;
    for (const Member& group : groups->members("tc"))
        if (group.thing->text == trafficClass) names.push_back(group.key);
    if (names.empty()) {
        rule<"target group: none has the traffic class">();
        return {};
    }
    if (names.size() > 1) rule<"target group: the least of several">();
    std::sort(names.begin(), names.end());
    return wrong == Wrong::greatestGroup ? names.back() : names.front();
}

}  // namespace

Ref PolicyMaps::groups() const {
    return context_.inputs.root(kQosInput)->one("forwardingGroupNameToTcMap");
}

void PolicyMaps::start() {
    id_ = context_.nextId();
    context_.trace.line(kTypeInit, id_);
    for (const Member& member : status_->members("pmapStatus"))
        handlePolicyMap(member.key);
}

void PolicyMaps::changed(const Thing& entity, std::string_view attribute, const std::string& key) {
    if (&entity == status_.get()) return handlePolicyMap(key);
    for (PolicyMap& child : children_) {
        if (&entity == context_.inputs.root(kQosInput).get()) {
            rule<"policy map: watches another map of groups">();
            child.groups = groups();
            if (context_.wrong == Wrong::newGroupMapRecomputes) handleGroups(child);
        } else if (&entity == child.groups.get()) {
            handleGroups(child);
        } else if (&entity == child.status.get() && attribute == "version") {
            handleVersion(child);
        }
    }
}

void PolicyMaps::handlePolicyMap(const std::string& name) {
    context_.trace.line(kPolicyMap, id_, kName, name);
    const ClassifierPair pair = classifiersOfPolicyMap(name);
    if (pair.ipv4.empty() && pair.ipv6.empty()) return rule<"policy map: not of classifiers">();
    const Ref status = status_->member("pmapStatus", name);
    countUse(pair.ipv4, Family::ipv4, status != nullptr);
    countUse(pair.ipv6, Family::ipv6, status != nullptr);
    const auto child = std::find_if(children_.begin(), children_.end(),
                                    [&](const PolicyMap& each) { return each.name == name; });
    if (status) {
        if (child == children_.end()) return create(name, status);
        return rule<"policy map: kept, and counted again">();
    }
    if (child == children_.end()) return rule<"policy map: neither there nor known">();
    rule<"policy map: removed">();
    dieOne(*child);
    children_.erase(child);
}

void PolicyMaps::countUse(const std::string& classifier, Family type, bool isAdded) {
    context_.trace.line(kUse, id_, ", classifierName = ", classifier,
                        ", classifierType = ", nameOf(type),
                        ", add = ", isAdded ? "true" : "false");
    if (classifier.empty())
        return context_.trace.line(kNoUse, id_, ", classifierName should not be empty");
    const std::pair key(classifier, type);
    if (isAdded) {
        unsigned& count = context_.registry[key];
        if (count > 0) rule<"registry: counted again">();
        count = context_.wrong == Wrong::registryCountsOnce ? 1 : count + 1;
        return;
    }
    const auto at = context_.registry.find(key);
    if (at == context_.registry.end()) return rule<"registry: not counted">();
    if (--at->second > 0) return rule<"registry: still in use">();
    rule<"registry: out of use">();
    context_.registry.erase(at);
}

void PolicyMaps::create(const std::string& name, const Ref& status) {
    rule<"policy map: created">();
    children_.push_back({context_.nextId(), name, status, classifiersOfPolicyMap(name), nullptr});
    PolicyMap& child = children_.back();
    context_.trace.line(kInit, child.id, kName, name);
    const ClassifierPair& pair = child.classifiers;
    if (!pair.ipv4.empty()) context_.state.addClassifier(pair.ipv4, Family::ipv4);
    if (!pair.ipv6.empty()) context_.state.addClassifier(pair.ipv6, Family::ipv6);
    handleVersion(child);
    child.groups = groups();
}

void PolicyMaps::handleVersion(const PolicyMap& policyMap) {
    context_.trace.line(kVersion, policyMap.id, kName, policyMap.name,
                        ", pmapStatusVersion = ", policyMap.status->textOf("version"));
    const Computed computed = updateActions(policyMap);
    context_.trace.line(kStale, policyMap.id, ", removing the stale classifier term action paths");
    if (context_.wrong != Wrong::noStalePass) clearStale(policyMap, computed);
}

void PolicyMaps::handleGroups(const PolicyMap& policyMap) {
    context_.trace.line(kGroups, policyMap.id);
    const Computed computed = updateActions(policyMap);
    if (context_.wrong == Wrong::groupsRunStalePass) clearStale(policyMap, computed);
}

PolicyMaps::Computed PolicyMaps::updateActions(const PolicyMap& policyMap) {
    context_.trace.line(kUpdate, policyMap.id, kName, policyMap.name);
    Computed computed;
    for (const Member& entry : policyMap.status->members("classes"))
        updateAction(policyMap, entry, computed);
    return computed;
}

void PolicyMaps::updateAction(const PolicyMap& policyMap, const Member& entry, Computed& computed) {
    const TermName term = termNamed(entry.key);
    if (!term) return rule<"class: not of a term">();
    const ClassifierPair& pair = policyMap.classifiers;
    if (term.classifier != pair.ipv4 && term.classifier != pair.ipv6)
        rule<"class: of a classifier that is not the policy map's">();
    const Family type = term.classifier == pair.ipv6 ? Family::ipv6 : Family::ipv4;
    context_.state.addTerm(term.classifier, type, term.id);
    std::string group;
    if (const Ref trafficClass = entry.thing->member("action", "4"))
        group = groupOf(trafficClass->text, groups(), context_.wrong);
    else
        rule<"class: sets no traffic class">();
    context_.trace.line(kClass, policyMap.id, ", cmapName = ", entry.key,
                        ", targetGroup = ", group);
    if (group.empty())
        context_.state.deleteAction(term.classifier, term.id);
    else
        context_.state.addAction(term.classifier, type, term.id, group);
    computed[term.classifier][term.id] = group;
}

void PolicyMaps::clearStale(const PolicyMap& policyMap, const Computed& computed) {
    const ClassifierPair& pair = policyMap.classifiers;
    for (const PublishedClassifier& classifier : context_.state.published) {
        if (classifier.name != pair.ipv4 && classifier.name != pair.ipv6) {
            context_.trace.line(kForeign, policyMap.id, ", classifier: ", classifier.name,
                                " does not belong to the pmap, skipping");
            continue;
        }
        if (!classifier.terms) continue;
        const auto found = computed.find(classifier.name);
        for (const PublishedTerm& term : *classifier.terms) {
            const bool isRecorded = found != computed.end() && found->second.contains(term.id);
            if (isRecorded && !found->second.at(term.id).empty()) continue;
            if (isRecorded)
                rule<"stale: a class without a group">();
            else
                rule<"stale: no class has the term">();
            context_.state.deleteAction(classifier.name, term.id);
        }
    }
}

void PolicyMaps::dieOne(const PolicyMap& policyMap) {
    context_.trace.line(kDie, policyMap.id, kName, policyMap.name);
    const ClassifierPair& pair = policyMap.classifiers;
    const Ref& configuration = context_.inputs.root(kClassifierConfig);
    for (const Member& member : configuration->members("classifier")) {
        if (member.key == pair.ipv4 || member.key == pair.ipv6)
            giveBack(member.key, *member.thing);
        else
            context_.trace.line(kNotMine, policyMap.id, ", the classifier: ", member.key,
                                " does not belong to the pmap: ", policyMap.name, ", skipping");
    }
}

void PolicyMaps::giveBack(const std::string& name, const Thing& configured) {
    if (context_.wrong == Wrong::pmapKeepsClassifiersWhenItDies) return;
    const Ref& given = configured.one("config")->one("type");
    const Family type = given && given->text == "IPV6" ? Family::ipv6 : Family::ipv4;
    context_.state.addClassifier(name, type);
    const Ref& terms = configured.one("terms");
    if (!terms) return rule<"give back: no terms">();
    for (const Member& term : terms->members("term")) {
        rule<"give back: a term">();
        context_.state.addTerm(name, type, term.key);
        const Ref& actions = term.thing->one("actions");
        if (!actions || actions->textOf("targetGroup").empty()) continue;
        rule<"give back: an action">();
        context_.state.addAction(name, type, term.key, actions->textOf("targetGroup"));
    }
}

void PolicyMaps::die() {
    context_.trace.line(kTypeDie, id_);
    for (const Member& member : status_->members("pmapStatus")) {
        const ClassifierPair pair = classifiersOfPolicyMap(member.key);
        countUse(pair.ipv4, Family::ipv4, false);
        countUse(pair.ipv6, Family::ipv6, false);
        for (const PolicyMap& child : children_)
            if (child.name == member.key) dieOne(child);
    }
}

}  // namespace Model
