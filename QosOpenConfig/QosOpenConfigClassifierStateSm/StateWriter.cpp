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

/// Who is told of a new classifier or term may take it away at once: what is made is held.
using ClassifierPtr = Orin::Ptr<State::Classifier>;

ClassifierPtr classifierMade(const StatePlace& place, const String& name, Classifier::Type type) {
    if (State::Classifier* existing = place.classifier(name)) return ClassifierPtr(existing);
    const State::ClassifierState state{name, type};
    const ClassifierPtr made = place.root().classifierIs(name);
    made->stateIs(state);
    return made;
}

/// What is asked for, kept: it may go with what is told.
struct Kept {
    String name;
    String termId;
    String targetGroup{};
};

/// Makes a term, and what is above it first; whoever was told of that may have made it already.
void newTermFromAbove(const StatePlace& place, const String& name, Classifier::Type type,
                      const String& termId) {
    const Kept kept{name, termId};
    const ClassifierPtr classifier = classifierMade(place, name, type);
    place.forget();
    const Orin::Ptr<State::Terms> terms = classifier->termsIs();
    if (terms->term(kept.termId) == nullptr) terms->bareTermIs(kept.termId);
}

/// Makes a term that was not there.
void newTerm(const StatePlace& place, const String& name, Classifier::Type type,
             const String& termId) {
    const State::Classifier* classifier = place.classifier(name);
    if (classifier == nullptr || classifier->terms() == nullptr)
        return newTermFromAbove(place, name, type, termId);
    place.forget();
    classifier->terms()->bareTermIs(termId);
}

std::uint32_t removals = 0;

}  // namespace

void addClassifier(const StatePlace& place, const String& name, Classifier::Type type) {
    traceAddClassifier(name, type);
    classifierMade(place, name, type);
}

std::uint32_t stateRemovals() noexcept {
    return removals;
}

void deleteClassifier(const StatePlace& place, const String& name) {
    trace(kDeleteClassifier, ", classifierName = ", name);
    place.forget();
    ++removals;
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
    ++removals;
    const ClassifierPtr classifier(place.root().classifier(name));
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
