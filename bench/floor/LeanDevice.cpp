#include "bench/floor/LeanDevice.h"

#include <algorithm>

namespace QosBench {
namespace {

constexpr std::uint32_t kSpareTc = 1000;

std::string numbered(const std::string& what, std::size_t number) {
    return what + std::to_string(number);
}

}  // namespace

LeanDevice::LeanDevice(std::size_t classifiers, std::size_t termsEach) {
    for (std::uint32_t tc = 0; tc != 2 * kClasses; ++tc)
        groupIs(names_(numbered("group-", tc)), tc);
    groupIs(spareGroup_, kSpareTc);
    for (std::size_t index = 0; index != classifiers; ++index)
        addClassifier(index, index == classifiers / 2 ? kClasses : termsEach);
    pmapName_ = names_("openconfig:" + numbered("classifier-", classifiers / 2) + ":");
    policyMap_ = policyMaps_.find(pmapName_);
    for (std::size_t term = 0; term != kClasses; ++term) {
        termNames_.push_back(names_("openconfig:" + numbered("classifier-", classifiers / 2) +
                                    numbered(":term-", term)));
        configured_[configuredName_][names_(numbered("term-", term))] =
            names_(numbered("group-", term));
    }
    accessList_ = accessLists_.find(termNames_.front());
}

void LeanDevice::addClassifier(std::size_t index, std::size_t terms) {
    const std::string text = numbered("classifier-", index);
    const Name name = names_(text);
    PolicyMap& policyMap = policyMaps_[names_("openconfig:" + text + ":")];
    policyMap.classifier = name;
    policyMap.version = 1;
    for (std::uint32_t term = 0; term != terms; ++term) {
        const Key key{name, names_(numbered("term-", term))};
        const Name objName = names_("openconfig:" + text + numbered(":term-", term));
        policyMap.classes.push_back({key, term});
        classMaps_[objName] = {key, objName};
        accessLists_[objName] = {key, rulesFrom(1, 1)};
    }
    configured_[name];
}

void LeanDevice::ruleIs(Rules& rules, std::uint32_t sequence) {
    Rule& rule = rules.byId[sequence];
    rule.dscp = static_cast<std::uint8_t>(sequence % 64);
    const auto below = [](const Slot& slot, std::uint32_t at) { return slot.sequence < at; };
    auto& slots = rules.bySequence;
    slots.insert(std::lower_bound(slots.begin(), slots.end(), sequence, below), {sequence, &rule});
}

std::shared_ptr<LeanDevice::Rules> LeanDevice::rulesFrom(std::uint32_t first, std::size_t count) {
    auto rules = std::make_shared<Rules>();
    for (std::uint32_t sequence = first; sequence != first + count; ++sequence)
        ruleIs(*rules, sequence);
    return rules;
}

std::string LeanDevice::stateText() const {
    std::vector<std::string> lines;
    for (const Name name : {policyMap_->classifier, configuredName_}) {
        const Classifier* classifier = classifiers_.find(name);
        if (classifier == nullptr) continue;
        classifier->terms.each([&](Name id, const Term& term) {
            std::string line = name->text + "/" + id->text + " dscp";
            for (const std::uint8_t dscp : term.dscps)
                line += " " + std::to_string(dscp);
            lines.push_back(line + " group " + (term.group == nullptr ? "" : term.group->text) +
                            "\n");
        });
    }
    std::sort(lines.begin(), lines.end());
    std::string text;
    for (const std::string& line : lines)
        text += line;
    return text;
}

void LeanDevice::start() {
    policyMaps_.each([this](Name, PolicyMap& policyMap) {
        ++withPolicyMap_[policyMap.classifier];
        applyPolicyMap(policyMap);
    });
    classMaps_.each([this](Name name, const ClassMap&) { applyClassMap(name); });
    accessLists_.each([this](Name, const AccessList& list) { applyAccessList(list); });
    configured_.each([this](Name classifier, const auto& terms) {
        terms.each([&](Name term, Name group) { applyConfiguredTerm(classifier, term, group); });
    });
}

void LeanDevice::watchState() {
    tell_ = [](const Term&) {};
}

void LeanDevice::groupOfTermIs(Term& term, Name group) const {
    if (term.group == group) return;
    term.group = group;
    if (tell_ != nullptr) tell_(term);
}

void LeanDevice::applyClasses(const PolicyMap& policyMap) {
    ++computation_;
    for (const Class& mapped : policyMap.classes) {
        Term& term = termMade(mapped.key);
        const Name* group = groupByTc_.find(mapped.tc);
        groupOfTermIs(term, group == nullptr ? nullptr : *group);
        term.seen = computation_;
    }
}

void LeanDevice::applyPolicyMap(const PolicyMap& policyMap) {
    applyClasses(policyMap);
    classifiers_[policyMap.classifier].terms.each([this](Name, Term& term) {
        if (term.seen != computation_) groupOfTermIs(term, nullptr);
    });
}

void LeanDevice::applyClassMap(Name name) {
    if (const ClassMap* classMap = classMaps_.find(name)) termMade(classMap->key);
}

void LeanDevice::applyAccessList(const AccessList& accessList) {
    Orin::Vector<std::uint8_t> dscps;
    for (const Slot& slot : accessList.rules->bySequence)
        dscps.push(slot.rule->dscp);
    Term& term = termMade(accessList.key);
    if (term.dscps == dscps) return;
    term.dscps.swap(dscps);
    if (tell_ != nullptr) tell_(term);
}

void LeanDevice::applyConfiguredTerm(Name classifier, Name term, Name group) {
    const unsigned* count = withPolicyMap_.find(classifier);
    if (count == nullptr || *count == 0) groupOfTermIs(termMade({classifier, term}), group);
}

void LeanDevice::changeClasses(std::size_t classes) {
    const std::uint32_t shift = policyMap_->version % 2 * kClasses;
    for (std::uint32_t index = 0; index != classes; ++index)
        policyMap_->classes[index].tc = index + shift;
}

void LeanDevice::raiseVersion() {
    ++policyMap_->version;
    applyPolicyMap(*policyMap_);
}

void LeanDevice::removePolicyMap() {
    removedPolicyMap_ = std::move(*policyMaps_.find(pmapName_));
    policyMaps_.erase(pmapName_);
    const Name classifier = removedPolicyMap_.classifier;
    if (--withPolicyMap_[classifier] == 0) withPolicyMap_.erase(classifier);
    classifiers_[classifier];
    configured_[classifier].each(
        [&](Name term, Name group) { applyConfiguredTerm(classifier, term, group); });
}

void LeanDevice::addPolicyMap() {
    policyMap_ = &policyMaps_[pmapName_];
    *policyMap_ = std::move(removedPolicyMap_);
    ++withPolicyMap_[policyMap_->classifier];
    applyPolicyMap(*policyMap_);
}

void LeanDevice::groupIs(Name group, std::uint32_t tc) {
    std::uint32_t& held = tcByGroup_[group];
    const Name* former = groupByTc_.find(held);
    if (former != nullptr && *former == group) groupByTc_.erase(held);
    held = tc;
    groupByTc_[tc] = group;
    policyMaps_.each([this](Name, const PolicyMap& policyMap) { applyClasses(policyMap); });
}

void LeanDevice::changeSpareForwardingGroup() {
    isAlternate_ = !isAlternate_;
    groupIs(spareGroup_, isAlternate_ ? kSpareTc + 1 : kSpareTc);
}

void LeanDevice::changeUsedForwardingGroup() {
    isAlternate_ = !isAlternate_;
    groupIs(usedGroup_, isAlternate_ ? kSpareTc + 2 : 0);
}

void LeanDevice::removeClassMap() {
    const Name name = termNames_.front();
    ClassMap* classMap = classMaps_.find(name);
    removedClassMap_ = *classMap;
    classMaps_.erase(name);
    classifiers_[removedClassMap_.key.classifier].terms.erase(removedClassMap_.key.term);
    if (tell_ != nullptr) tell_({});
}

void LeanDevice::addClassMap() {
    const Name name = termNames_.front();
    classMaps_[name] = removedClassMap_;
    applyClassMap(name);
}

void LeanDevice::changeMatch() {
    isAlternate_ = !isAlternate_;
    classMaps_[termNames_.front()].matched = termNames_[isAlternate_ ? 1 : 0];
    applyClassMap(termNames_.front());
}

void LeanDevice::giveRules(std::size_t rules) {
    lastSequence_ = static_cast<std::uint32_t>(rules);
    accessList_->rules = rulesFrom(1, rules);
    applyAccessList(*accessList_);
}

void LeanDevice::addRule() {
    ruleIs(*accessList_->rules, ++lastSequence_);
    applyAccessList(*accessList_);
}

void LeanDevice::removeRule() {
    Rules& rules = *accessList_->rules;
    rules.bySequence.pop_back();
    rules.byId.erase(lastSequence_);
    --lastSequence_;
    applyAccessList(*accessList_);
}

void LeanDevice::changeRule() {
    isAlternate_ = !isAlternate_;
    Rules& rules = *accessList_->rules;
    const std::uint32_t id = isAlternate_ ? 1 : lastSequence_;
    const auto below = [](const Slot& slot, std::uint32_t at) { return slot.sequence < at; };
    std::lower_bound(rules.bySequence.begin(), rules.bySequence.end(), lastSequence_, below)->rule =
        rules.byId.find(id);
    applyAccessList(*accessList_);
}

void LeanDevice::giveTwoLists() {
    accessList_->rules = rulesFrom(1, kClasses);
    otherRules_ = rulesFrom(1 + kClasses, kClasses);
}

void LeanDevice::replaceRules() {
    accessList_->rules.swap(otherRules_);
    applyAccessList(*accessList_);
}

void LeanDevice::changeConfiguredAction() {
    isAlternate_ = !isAlternate_;
    const Name group = isAlternate_ ? otherGroup_ : usedGroup_;
    configured_[configuredName_][firstTerm_] = group;
    applyConfiguredTerm(configuredName_, firstTerm_, group);
}

}  // namespace QosBench
