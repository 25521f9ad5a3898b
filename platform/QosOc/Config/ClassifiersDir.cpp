#include "platform/QosOc/Config/ClassifiersDir.h"

#include "platform/Vex/Derive.h"

namespace QosOc::Config {

constinit const Vex::TypeRecord ClassifiersDir::kTypeRecord = Vex::recordOf<ClassifiersDir>();

ClassifiersDir::~ClassifiersDir() = default;

void ClassifiersDir::classifierIs(const Orin::Ptr<Classifier>& classifier) {
    memberIs(kClassifier.id, classifier_, classifier->name(), classifier);
}

Orin::Ptr<Classifier> ClassifiersDir::classifierDel(const Orin::String& name) {
    return memberDel(kClassifier.id, classifier_, name).value_or(nullptr);
}

}  // namespace QosOc::Config
