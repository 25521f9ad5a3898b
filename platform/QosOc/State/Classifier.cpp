#include "platform/QosOc/State/Classifier.h"

#include "platform/Vex/Derive.h"

namespace QosOc::State {

constinit const Vex::TypeRecord ClassifierState::kTypeRecord = Vex::recordOf<ClassifierState>();
constinit const Vex::TypeRecord Classifier::kTypeRecord = Vex::recordOf<Classifier>();

Classifier::Classifier(const Orin::String& name) : name_(name) {}
Classifier::~Classifier() = default;

void Classifier::stateIs(const ClassifierState& state) {
    attributeIs(kState.id, state_, state);
}

Orin::Ptr<Terms> Classifier::termsIs() {
    if (terms_) return terms_;
    const auto made = Terms::create();
    attributeIs(kTerms.id, terms_, made);
    return made;
}

void Classifier::termsDel() {
    attributeIs(kTerms.id, terms_, nullptr);
}

}  // namespace QosOc::State
