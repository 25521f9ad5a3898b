#include "QosOpenConfig/QosOpenConfigClassifierStateSm/StateWriter.h"

#include <utility>

#include "QosOpenConfig/QosOpenConfigClassifierStateSm/Trace.h"

namespace QosOc {
namespace {

using Orin::String;

constexpr auto kAddClassifier =
    tracePoint("addClassifier",
               "void QosOc::addClassifier(const Ptr&, const String&, QosOc::Classifier::Type)");
constexpr auto kDeleteClassifier =
    tracePoint("deleteClassifier", "void QosOc::deleteClassifier(const Ptr&, const String&)");
constexpr auto kAddClassifierTerm =
    tracePoint("addClassifierTerm",
               "void QosOc::addClassifierTerm(const Ptr&, const String&, QosOc::Classifier::Type, "
               "const String&)");
constexpr auto kDeleteClassifierTerm =
    tracePoint("deleteClassifierTerm",
               "void QosOc::deleteClassifierTerm(const Ptr&, const String&, const String&)");
constexpr auto kAddClassifierTermCondition =
    tracePoint("addClassifierTermCondition",
               "void QosOc::addClassifierTermCondition(const Ptr&, const String&, "
               "QosOc::Classifier::Type, const String&, Orin::Vector<unsigned char>&)");
constexpr auto kDeleteClassifierTermCondition = tracePoint(
    "deleteClassifierTermCondition",
    "void QosOc::deleteClassifierTermCondition(const Ptr&, const String&, const String&, bool)");
constexpr auto kAddClassifierTermAction =
    tracePoint("addClassifierTermAction",
               "void QosOc::addClassifierTermAction(const Ptr&, const String&, "
               "QosOc::Classifier::Type, const String&, const String&)");
constexpr auto kDeleteClassifierTermAction =
    tracePoint("deleteClassifierTermAction",
               "void QosOc::deleteClassifierTermAction(const Ptr&, const String&, const String&)");

/// A stored term and where it is stored; both null when it is not.
struct StoredTerm {
    State::Terms* terms = nullptr;
    State::Term* term = nullptr;
};

State::Classifier& classifierMade(const StateDir& root, const String& name, Classifier::Type type) {
    trace(kAddClassifier, ", classifierName = ", name, ", classifierType = ", type);
    if (State::Classifier* existing = root->classifier(name)) return *existing;
    State::Classifier& made = root->classifierIs(name);
    made.stateIs({name, type});
    return made;
}

StoredTerm termMade(const StateDir& root, const String& name, Classifier::Type type,
                    const String& termId) {
    trace(kAddClassifierTerm, ", classifierName = ", name, ", classifierType = ", type,
          ", termId = ", termId);
    State::Terms& terms = classifierMade(root, name, type).termsIs();
    if (State::Term* existing = terms.term(termId)) return {&terms, existing};
    terms.termIs(State::Term(termId));
    return {&terms, terms.term(termId)};
}

StoredTerm storedTerm(const StateDir& root, const String& name, const String& termId) {
    const State::Classifier* classifier = root->classifier(name);
    State::Terms* terms = classifier == nullptr ? nullptr : classifier->terms();
    return {terms, terms == nullptr ? nullptr : terms->term(termId)};
}

Config::TermConditionsIpConfig ipConditions(const Orin::Vector<unsigned char>& values) {
    if (values.size() == 1) return Config::TermConditionsIpConfig(values[0]);
    Config::TermConditionsIpConfig set;
    set.dscpSet = values;
    return set;
}

}  // namespace

void addClassifier(const StateDir& root, const String& name, Classifier::Type type) {
    classifierMade(root, name, type);
}

void deleteClassifier(const StateDir& root, const String& name) {
    trace(kDeleteClassifier, ", classifierName = ", name);
    root->classifierDel(name);
}

void addClassifierTerm(const StateDir& root, const String& name, Classifier::Type type,
                       const String& termId) {
    termMade(root, name, type, termId);
}

void deleteClassifierTerm(const StateDir& root, const String& name, const String& termId) {
    trace(kDeleteClassifierTerm, ", classifierName = ", name, ", termId = ", termId);
    State::Classifier* classifier = root->classifier(name);
    if (classifier == nullptr || classifier->terms() == nullptr) return;
    classifier->terms()->termDel(termId);
    if (classifier->terms()->term().empty()) classifier->termsDel();
}

void addClassifierTermCondition(const StateDir& root, const String& name, Classifier::Type type,
                                const String& termId, Orin::Vector<unsigned char>& values) {
    trace(kAddClassifierTermCondition, ", classifierName = ", name, ", classifierType = ", type,
          ", termId = ", termId);
    if (values.empty()) {
        trace(kAddClassifierTermCondition, ", no rules are defined, skipping");
        return;
    }
    const StoredTerm stored = termMade(root, name, type, termId);
    Config::TermConditions conditions;
    (type == Classifier::Type::IPV4 ? conditions.ipv4 : conditions.ipv6) = ipConditions(values);
    stored.terms->conditionsIs(*stored.term, std::move(conditions));
}

void deleteClassifierTermCondition(const StateDir& root, const String& name, const String& termId,
                                   bool removeConditions) {
    trace(kDeleteClassifierTermCondition, ", classifierName = ", name, ", termId = ", termId);
    const StoredTerm stored = storedTerm(root, name, termId);
    if (stored.term == nullptr) return;
    if (removeConditions)
        stored.terms->conditionsIs(*stored.term, std::nullopt);
    else
        stored.terms->conditionsIs(*stored.term, Config::TermConditions());
}

void addClassifierTermAction(const StateDir& root, const String& name, Classifier::Type type,
                             const String& termId, const String& targetGroup) {
    trace(kAddClassifierTermAction, ", classifierName = ", name, ", classifierType = ", type,
          ", termId = ", termId, ", targetGroup = ", targetGroup);
    const StoredTerm stored = termMade(root, name, type, termId);
    stored.terms->actionsIs(*stored.term, {targetGroup});
}

void deleteClassifierTermAction(const StateDir& root, const String& name, const String& termId) {
    trace(kDeleteClassifierTermAction, ", classifierName = ", name, ", termId = ", termId);
    const StoredTerm stored = storedTerm(root, name, termId);
    // The container stays, its target group cleared: unlike conditions, actions never go.
    if (stored.term != nullptr) stored.terms->actionsIs(*stored.term, {});
}

}  // namespace QosOc
