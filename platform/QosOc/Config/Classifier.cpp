#include "platform/QosOc/Config/Classifier.h"

#include "platform/Vex/Derive.h"

namespace QosOc::Config {

constinit const Vex::TypeRecord Classifier::kTypeRecord = Vex::recordOf<Classifier>();

Classifier::Classifier(const Orin::String& name) : name_(name), config_{name, std::nullopt} {}
Classifier::~Classifier() = default;

void Classifier::configIs(const ClassifierConfig& config) {
    attributeIs(kConfig.id, config_, config);
}

void Classifier::termsIs(const Orin::Ptr<Terms>& terms) {
    attributeIs(kTerms.id, terms_, terms);
}

}  // namespace QosOc::Config
