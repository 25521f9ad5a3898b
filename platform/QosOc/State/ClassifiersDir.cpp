#include "platform/QosOc/State/ClassifiersDir.h"

#include "platform/Vex/Derive.h"

namespace QosOc::State {

constinit const Vex::TypeRecord ClassifiersDir::kTypeRecord = Vex::recordOf<ClassifiersDir>();

ClassifiersDir::~ClassifiersDir() = default;

Orin::Ptr<Classifier> ClassifiersDir::classifierIs(const Orin::String& name) {
    if (Classifier* held = classifier(name)) return Orin::Ptr<Classifier>::sharing(held);
    const auto made = Classifier::create(name);
    memberIs(kClassifier.id, classifier_, name, made);
    return made;
}

void ClassifiersDir::classifierDel(const Orin::String& name) {
    memberDel(kClassifier.id, classifier_, name);
}

}  // namespace QosOc::State
