#include "tests/model/ClassMaps.h"

#include <algorithm>

#include "tests/model/Names.h"

namespace Model {
namespace {

constexpr const char* kSource =
    "OpenConfigQosClfStateSm/8 QosOpenConfig/QosOpenConfigClassifierStateSm";

const Point kTypeInit{kSource, 451, "handleInitialized",
                      "void QosOc::CmapTypeStatusSm::handleInitialized()"};
const Point kClassMap{kSource, 434, "handleCmapStatus",
                      "void QosOc::CmapTypeStatusSm::handleCmapStatus(const String&)"};
const Point kTypeDie{kSource, 460, "doPrepareToDie",
                     "void QosOc::CmapTypeStatusSm::doPrepareToDie()"};
const Point kInit{kSource, 425, "handleInitialized",
                  "void QosOc::CmapStatusSm::handleInitialized()"};
const Point kMatch{kSource, 387, "handleCmapStatusMatch",
                   "void QosOc::CmapStatusSm::handleCmapStatusMatch(Qos::ClassMapMatchOption)"};
const Point kDie{kSource, 408, "doPrepareToDie", "void QosOc::CmapStatusSm::doPrepareToDie()"};

}  // namespace

void ClassMaps::start() {
    id_ = context_.nextId();
    context_.trace.line(kTypeInit, id_);
    for (const Member& member : status_->members("cmapStatus"))
        handleClassMap(member.key);
}

void ClassMaps::changed(const Thing& entity, const std::string& key) {
    if (&entity == status_.get()) return handleClassMap(key);
    for (const ClassMap& child : children_)
        if (&entity == child.status.get()) return handleMatch(child, key);
}

void ClassMaps::handleClassMap(const std::string& name) {
    context_.trace.line(kClassMap, id_, ", cmapName = ", name);
    const auto child = std::find_if(children_.begin(), children_.end(),
                                    [&](const ClassMap& each) { return each.name == name; });
    if (const Ref status = status_->member("cmapStatus", name)) {
        if (child != children_.end()) return rule<"class map: kept">();
        rule<"class map: created">();
        children_.push_back({context_.nextId(), name, status});
        context_.trace.line(kInit, children_.back().id);
        for (const Member& option : status->members("match"))
            handleMatch(children_.back(), option.key);
        return;
    }
    if (child == children_.end()) return rule<"class map: neither there nor known">();
    rule<"class map: removed">();
    dieOne(*child);
    children_.erase(child);
}

void ClassMaps::handleMatch(const ClassMap& classMap, const std::string& option) {
    context_.trace.line(kMatch, classMap.id, ", option = ", option);
    const bool isThere = classMap.status->member("match", option) != nullptr;
    const bool isIpv6 = isThere && option == "matchIpv6AccessGroup";
    if (!isThere) rule<"class map: a match that is gone writes as IPv4">();
    if (!isThere && context_.wrong == Wrong::removedMatchDeletes) return dieOne(classMap);
    const Family type = isIpv6 ? Family::ipv6 : Family::ipv4;
    if (const TermName term = termNamed(classMap.name)) {
        rule<"class map: stands for a term">();
        return context_.state.addTerm(term.classifier, type, term.id);
    }
    const std::string classifier = classifierOfClassMap(classMap.name);
    if (classifier.empty()) return rule<"class map: stands for nothing">();
    rule<"class map: stands for a classifier">();
    context_.state.addClassifier(classifier, type);
}

void ClassMaps::dieOne(const ClassMap& classMap) {
    context_.trace.line(kDie, classMap.id);
    if (const TermName term = termNamed(classMap.name)) {
        if (context_.wrong == Wrong::classMapLeavesItsTerm) return;
        return context_.state.deleteTerm(term.classifier, term.id);
    }
    const std::string classifier = classifierOfClassMap(classMap.name);
    if (classifier.empty()) return rule<"class map: takes nothing back">();
    context_.state.deleteClassifier(classifier);
}

void ClassMaps::die() {
    context_.trace.line(kTypeDie, kNobody);
    for (const Member& member : status_->members("cmapStatus"))
        for (const ClassMap& child : children_)
            if (child.name == member.key) dieOne(child);
}

}  // namespace Model
