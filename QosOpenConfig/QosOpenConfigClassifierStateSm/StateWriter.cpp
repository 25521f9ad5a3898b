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

inline void traceAddClassifierTerm(const String& name, Classifier::Type type,
                                   const String& termId) {
    trace(kAddClassifierTerm, ", classifierName = ", name, ", classifierType = ", type,
          ", termId = ", termId);
    traceAddClassifier(name, type);
}

/// Keeps a classifier for the call: a subscriber may remove it as soon as it is notified.
using ClassifierPtr = Orin::Ptr<State::Classifier>;

ClassifierPtr classifierMade(const StatePlace& place, const String& name, Classifier::Type type) {
    if (State::Classifier* existing = place.classifier(name))
        return ClassifierPtr::sharing(existing);
    const State::ClassifierState state{name, type};
    const ClassifierPtr made = place.root().classifierIs(name);
    made->stateIs(state);
    return made;
}

/// Copies of the arguments: a subscriber may remove what they are part of.
struct Kept {
    String name;
    String termId;
    String targetGroup{};
};

/// Creates a term after its classifier and its container. A subscriber may remove the classifier as
/// soon as it is created, and create it again: the term goes to the one that is in the tree then.
void newTermFromAbove(const StatePlace& place, const String& name, Classifier::Type type,
                      const String& termId) {
    const Kept kept{name, termId};
    classifierMade(place, name, type);
    place.forget();
    const auto classifier = ClassifierPtr::sharing(place.root().classifier(kept.name));
    if (classifier == nullptr) return;
    const Orin::Ptr<State::Terms> terms = classifier->termsIs();
    if (terms->term(kept.termId) == nullptr) terms->bareTermIs(kept.termId);
}

/// Stores a target group, which may be empty, in a term that exists; false if there is no such
/// term.
bool storedTermActionIs(const StatePlace& place, const String& name, const String& termId,
                        const String& targetGroup) {
    State::Term* term = place.term(name, termId);
    if (term == nullptr) return false;
    if (place.terms().targetGroupIs(*term, targetGroup)) place.forget();
    return true;
}

/// Creates a term that does not exist.
void newTerm(const StatePlace& place, const String& name, Classifier::Type type,
             const String& termId) {
    const State::Classifier* classifier = place.classifier(name);
    if (classifier == nullptr || classifier->terms() == nullptr)
        return newTermFromAbove(place, name, type, termId);
    place.forget();
    classifier->terms()->bareTermIs(termId);
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
    const auto classifier = ClassifierPtr::sharing(place.root().classifier(name));
    if (classifier == nullptr || classifier->terms() == nullptr) return;
    classifier->terms()->termDel(termId);
    const State::Terms* left = classifier->terms();
    if (left != nullptr && left->term().empty()) classifier->termsDel();
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
    const auto storedIs = [&](const String& of, const String& id) {
        State::Term* term = place.term(of, id);
        if (term != nullptr && place.terms().dscpsAre(*term, type, values)) place.forget();
        return term != nullptr;
    };
    if (storedIs(name, termId)) return;
    const Kept kept{name, termId};
    newTerm(place, name, type, termId);
    storedIs(kept.name, kept.termId);
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
    const Kept kept{name, termId, targetGroup};
    newTerm(place, name, type, termId);
    storedTermActionIs(place, kept.name, kept.termId, kept.targetGroup);
}

void deleteClassifierTermAction(const StatePlace& place, const String& name, const String& termId) {
    trace(kDeleteClassifierTermAction, ", classifierName = ", name, ", termId = ", termId);
    // The container stays, its target group cleared: unlike conditions, actions never go.
    storedTermActionIs(place, name, termId, String::none());
}

}  // namespace QosOc
