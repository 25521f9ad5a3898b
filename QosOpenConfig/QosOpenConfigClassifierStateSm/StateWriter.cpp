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

inline void traceAddClassifier(const String& name, Classifier::Type type) {
    trace(kAddClassifier, ", classifierName = ", name, ", classifierType = ", type);
}

inline void traceAddClassifierTerm(const String& name, Classifier::Type type, const String& termId) {
    trace(kAddClassifierTerm, ", classifierName = ", name, ", classifierType = ", type,
          ", termId = ", termId);
    traceAddClassifier(name, type);
}

State::Classifier& classifierMade(const StatePlace& place, const String& name,
                                  Classifier::Type type) {
    if (State::Classifier* existing = place.classifier(name)) return *existing;
    place.forget();
    State::Classifier& made = place.root().classifierIs(name);
    made.stateIs({name, type});
    return made;
}

void newTerm(const StatePlace& place, const String& name, Classifier::Type type,
             const String& termId) {
    State::Classifier& classifier = classifierMade(place, name, type);
    place.forget();
    classifier.termsIs().bareTermIs(termId);
}

}  // namespace

void addClassifier(const StatePlace& place, const String& name, Classifier::Type type) {
    traceAddClassifier(name, type);
    classifierMade(place, name, type);
}

void deleteClassifier(const StatePlace& place, const String& name) {
    trace(kDeleteClassifier, ", classifierName = ", name);
    place.forget();
    place.root().classifierDel(name);
}

void addClassifierTerm(const StatePlace& place, const String& name, Classifier::Type type,
                       const String& termId) {
    traceAddClassifierTerm(name, type, termId);
    if (place.term(name, termId) == nullptr) newTerm(place, name, type, termId);
}

void deleteClassifierTerm(const StatePlace& place, const String& name, const String& termId) {
    trace(kDeleteClassifierTerm, ", classifierName = ", name, ", termId = ", termId);
    place.forget();
    State::Classifier* classifier = place.root().classifier(name);
    if (classifier == nullptr || classifier->terms() == nullptr) return;
    classifier->terms()->termDel(termId);
    if (classifier->terms()->term().empty()) classifier->termsDel();
}

void addClassifierTermCondition(const StatePlace& place, const String& name, Classifier::Type type,
                                const String& termId, Orin::Vector<unsigned char>& values) {
    trace(kAddClassifierTermCondition, ", classifierName = ", name, ", classifierType = ", type,
          ", termId = ", termId);
    if (values.empty()) {
        trace(kAddClassifierTermCondition, ", no rules are defined, skipping");
        return;
    }
    traceAddClassifierTerm(name, type, termId);
    State::Term* term = place.term(name, termId);
    if (term == nullptr) {
        newTerm(place, name, type, termId);
        term = place.term(name, termId);
    }
    if (place.terms().dscpsAre(*term, type, values)) place.forget();
}

void deleteClassifierTermCondition(const StatePlace& place, const String& name,
                                   const String& termId, bool removeConditions) {
    trace(kDeleteClassifierTermCondition, ", classifierName = ", name, ", termId = ", termId);
    State::Term* term = place.term(name, termId);
    if (term == nullptr) return;
    std::optional<Config::TermConditions> left;
    if (!removeConditions) left.emplace();
    if (place.terms().conditionsIs(*term, std::move(left))) place.forget();
}

void addClassifierTermAction(const StatePlace& place, const String& name, Classifier::Type type,
                             const String& termId, const String& targetGroup) {
    trace(kAddClassifierTermAction, ", classifierName = ", name, ", classifierType = ", type,
          ", termId = ", termId, ", targetGroup = ", targetGroup);
    traceAddClassifierTerm(name, type, termId);
    if (storedTermActionIs(place, name, termId, targetGroup)) return;
    const String kept = targetGroup;  // may go with what is told of the new term
    newTerm(place, name, type, termId);
    storedTermActionIs(place, name, termId, kept);
}

void deleteClassifierTermAction(const StatePlace& place, const String& name, const String& termId) {
    trace(kDeleteClassifierTermAction, ", classifierName = ", name, ", termId = ", termId);
    // The container stays, its target group cleared: unlike conditions, actions never go.
    storedTermActionIs(place, name, termId, String::none());
}

}  // namespace QosOc
