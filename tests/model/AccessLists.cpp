#include "tests/model/AccessLists.h"

#include <algorithm>

#include "tests/model/Names.h"

namespace Model {
namespace {

constexpr const char* kSource =
    "OpenConfigQosClfStateSm/8 QosOpenConfig/QosOpenConfigClassifierStateSm";

const Point kTypeInit{kSource, 347, "handleInitialized",
                      "void QosOc::AclTypeStateSm::handleInitialized()"};
const Point kSweep{kSource, 363, "handleInitialized",
                   "void QosOc::AclTypeStateSm::handleInitialized()", ": stale"};
const Point kList{kSource, 322, "handleAclConfig",
                  "void QosOc::AclTypeStateSm::handleAclConfig(const String&)"};
const Point kTypeDie{kSource, 335, "doPrepareToDie",
                     "void QosOc::AclTypeStateSm::doPrepareToDie()"};
const Point kInit{kSource, 304, "handleInitialized", "void QosOc::AclStateSm::handleInitialized()"};
const Point kSub{kSource, 273, "handleAclSubConfig",
                 "void QosOc::AclStateSm::handleAclSubConfig()"};
const Point kDie{kSource, 287, "doPrepareToDie", "void QosOc::AclStateSm::doPrepareToDie()"};
const Point kSubInit{kSource, 266, "handleInitialized",
                     "void QosOc::AclSubStateSm::handleInitialized()"};
const Point kSubDie{kSource, 252, "doPrepareToDie", "void QosOc::AclSubStateSm::doPrepareToDie()"};
const Point kRules{kSource, 206, "handleAclRules", "void QosOc::AclSubStateSm::handleAclRules()"};
const Point kNoRules{kSource, 215, "handleAclRules", "void QosOc::AclSubStateSm::handleAclRules()",
                     ": none"};

}  // namespace

void AccessLists::start() {
    id_ = context_.nextId();
    context_.trace.line(kTypeInit, id_);
    std::map<std::string, std::vector<std::string>> named;
    for (const Member& member : config_->members("aclConfig")) {
        const TermName term = termNamed(member.key);
        if (!term) {
            rule<"access list: passed over at the start">();
            continue;
        }
        handleList(member.key);
        named[term.classifier].push_back(term.id);
    }
    context_.trace.line(kSweep, id_, ", removing the stale entries");
    if (context_.wrong != Wrong::noSweep) sweep(named);
}

void AccessLists::sweep(const std::map<std::string, std::vector<std::string>>& named) {
    for (const PublishedClassifier& classifier : context_.state.published) {
        const auto found = named.find(classifier.name);
        const bool isNamed = found != named.end();
        if (!isNamed && context_.wrong != Wrong::sweepOfUnnamedClassifiers) {
            rule<"sweep: a classifier that no list names">();
            continue;
        }
        if (!classifier.terms) continue;
        for (const PublishedTerm& term : *classifier.terms) {
            const bool isKept = isNamed && std::find(found->second.begin(), found->second.end(),
                                                     term.id) != found->second.end();
            if (!term.conditions || isKept) continue;
            rule<"sweep: stale conditions">();
            context_.state.deleteCondition(classifier.name, term.id, true);
        }
    }
}

void AccessLists::changed(const Thing& entity, std::string_view attribute, const std::string& key) {
    if (&entity == config_.get()) return handleList(key);
    for (AccessList& child : children_) {
        if (&entity == child.config.get()) return handleSub(child);
        if (!child.sub || &entity != child.sub->config.get()) continue;
        if (attribute == "ruleIdBySequence") return handleRules(child, *child.sub);
        return rule<"rules: nobody hears of rules by id">();
    }
}

void AccessLists::handleList(const std::string& name) {
    context_.trace.line(kList, id_, ", aclName = ", name);
    const auto child = std::find_if(children_.begin(), children_.end(),
                                    [&](const AccessList& each) { return each.name == name; });
    if (const Ref config = config_->member("aclConfig", name)) {
        if (child == children_.end()) return create(name, config);
        return rule<"access list: kept">();
    }
    if (child == children_.end()) return rule<"access list: neither there nor known">();
    rule<"access list: removed">();
    dieOne(*child);
    children_.erase(child);
}

void AccessLists::create(const std::string& name, const Ref& config) {
    rule<"access list: created">();
    children_.push_back({context_.nextId(), name, config});
    AccessList& list = children_.back();
    context_.trace.line(kInit, list.id);
    if (const TermName term = termNamed(name))
        context_.state.addTerm(term.classifier, family_, term.id);
    else
        rule<"access list: not of a term">();
    handleSub(list);
}

void AccessLists::handleSub(AccessList& list) {
    context_.trace.line(kSub, list.id);
    const Ref& config = list.config->one("aclSubConfig");
    if (!config) {
        if (list.sub) return dieSub(list);
        return rule<"sub-configuration: neither there nor known">();
    }
    if (list.sub && list.sub->config == config) return rule<"sub-configuration: kept">();
    if (list.sub) {
        rule<"sub-configuration: replaced, not cleaned up">();
        if (context_.wrong == Wrong::replacedSubConfigurationCleansUp) dieSub(list);
    }
    list.sub = Sub{context_.nextId(), config};
    context_.trace.line(kSubInit, list.sub->id);
    handleRules(list, *list.sub);
}

void AccessLists::handleRules(const AccessList& list, const Sub& sub) {
    context_.trace.line(kRules, sub.id);
    const TermName term = termNamed(list.name);
    if (!term) return rule<"rules: not of a term">();
    if (sub.config->members("ruleIdBySequence").empty()) {
        context_.trace.line(kNoRules, sub.id, ", no rules present in the ACL: ", list.name,
                            ", deleting the classifier term conditions");
        return context_.state.deleteCondition(term.classifier, term.id, false);
    }
    context_.state.addCondition(term.classifier, family_, term.id, dscpValues(*sub.config));
}

std::vector<unsigned> AccessLists::dscpValues(const Thing& sub) const {
    const bool isIpv4 = family_ == Family::ipv4;
    std::vector<unsigned> values;
    for (const Member& sequence : sub.members("ruleIdBySequence")) {
        const Ref found = sub.member(isIpv4 ? "ipRuleById" : "ip6RuleById", sequence.thing->text);
        if (!found) {
            rule<"rules: a sequence without a rule">();
            continue;
        }
        const Thing& filter = *found->one("filter");
        const auto number = [&](const char* name) {
            return static_cast<unsigned>(numberOf(filter.textOf(name)));
        };
        if (isIpv4 && filter.textOf("dscpEnabled") == "true") {
            rule<"rules: an IPv4 rule with a DSCP">();
            values.push_back(number("dscpValue"));
        } else if (isIpv4) {
            rule<"rules: an IPv4 rule without a DSCP">();
        } else if (number("trafficClassMask") >= 252 ||
                   (context_.wrong == Wrong::partialMaskCounts && number("trafficClassMask") > 0)) {
            rule<"rules: an IPv6 rule with a DSCP">();
            values.push_back(number("trafficClass") / 4);
        } else {
            rule<"rules: an IPv6 rule without a whole DSCP">();
        }
    }
    if (context_.wrong == Wrong::duplicatesMerged)
        values.erase(std::unique(values.begin(), values.end()), values.end());
    return values;
}

void AccessLists::dieSub(AccessList& list) {
    context_.trace.line(kSubDie, list.sub->id);
    const TermName term = termNamed(list.name);
    if (term)
        context_.state.deleteCondition(term.classifier, term.id,
                                       context_.wrong == Wrong::conditionsGoWithSubConfiguration);
    else
        rule<"sub-configuration: takes nothing back">();
    list.sub.reset();
}

void AccessLists::dieOne(AccessList& list) {
    context_.trace.line(kDie, list.id);
    if (list.sub) dieSub(list);
    if (const TermName term = termNamed(list.name))
        context_.state.deleteCondition(term.classifier, term.id, true);
    else
        rule<"access list: takes nothing back">();
}

void AccessLists::die() {
    context_.trace.line(kTypeDie, id_);
    for (const Member& member : config_->members("aclConfig"))
        for (AccessList& child : children_)
            if (child.name == member.key) dieOne(child);
}

}  // namespace Model
