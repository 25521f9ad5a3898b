#include "QosOpenConfig/QosOpenConfigClassifierStateSm/ClassifierConfigSm.h"

#include "QosOpenConfig/QosOpenConfigClassifierStateSm/Trace.h"
#include "platform/Vex/Derive.h"
#include "platform/Vex/Errors.h"

namespace QosOc {
namespace {

using Orin::String;

constexpr auto kHandleInitialized =
    tracePoint("handleInitialized", "void QosOc::ClassifierConfigSm::handleInitialized()");
constexpr auto kHandleClassifierTerms =
    tracePoint("handleClassifierTerms", "void QosOc::ClassifierConfigSm::handleClassifierTerms()");
constexpr auto kDoPrepareToDie =
    tracePoint("doPrepareToDie", "void QosOc::ClassifierConfigSm::doPrepareToDie()");

}  // namespace

constinit const Vex::TypeRecord ClassifierConfigSm::kTypeRecord =
    Vex::recordOf<ClassifierConfigSm>();

ClassifierConfigSm::ClassifierConfigSm(
    const Orin::Ptr<const Config::Classifier>& classifierConfig,
    const Orin::Ptr<const ClassifiersWithPmap>& classifiersWithPmap,
    const StateDir& classifierStateDir)
    : classifierConfig_(classifierConfig),
      classifiersWithPmap_(classifiersWithPmap),
      classifierStateDir_(classifierStateDir) {
    start();
}

Orin::Ptr<ClassifierConfigSm> ClassifierConfigSm::ClassifierConfigSmIs(
    const Orin::Ptr<const Config::Classifier>& classifierConfig,
    const Orin::Ptr<const ClassifiersWithPmap>& classifiersWithPmap,
    const StateDir& classifierStateDir) {
    return create(classifierConfig, classifiersWithPmap, classifierStateDir);
}

Orin::Ptr<ClassifierConfigSm> classifierConfigSmFactory(
    const Orin::Ptr<const Config::Classifier>& classifierConfig,
    const Orin::Ptr<const ClassifiersWithPmap>& classifiersWithPmap,
    const StateDir& classifierStateDir) {
    return ClassifierConfigSm::ClassifierConfigSmIs(classifierConfig, classifiersWithPmap,
                                                    classifierStateDir);
}

const Orin::Ptr<ClassifierTermsSm>& ClassifierConfigSm::classifierTermsSmIs(
    const Orin::Ptr<const Config::Terms>& terms, const String& name, Classifier::Type type,
    const Orin::Ptr<const ClassifiersWithPmap>& classifiersWithPmap,
    const StateDir& classifierStateDir) {
    if (!terms) Vex::throwMutatorArgNullPointerException("classifierTermsConfig");
    return classifierTermsSm_.createOrReplace(terms, name, type, classifiersWithPmap,
                                              classifierStateDir);
}

Orin::Ptr<ClassifierTermsSm> ClassifierConfigSm::classifierTermsSmDel() {
    return classifierTermsSm_.remove();
}

void ClassifierConfigSm::handleInitialized() {
    traceOf(this, kHandleInitialized, ", classifierName = ", classifierConfig_->config().name);
    handleClassifierTerms();
}

void ClassifierConfigSm::handleClassifierTerms() {
    const Config::ClassifierConfig& config = classifierConfig_->config();
    traceOf(this, kHandleClassifierTerms, ", classifierName = ", config.name);
    classifierTermsSm_.reconcile(classifierConfig_->terms(), [&](const auto& terms) {
        classifierTermsSmIs(terms, config.name, config.type.value_or(Classifier::Type::IPV4),
                            classifiersWithPmap_, classifierStateDir_);
    });
}

void ClassifierConfigSm::doPrepareToDie() {
    traceOf(this, kDoPrepareToDie, ", classifierName = ", classifierConfig_->config().name);
    classifierTermsSm_.prepareAndRemove();
}

}  // namespace QosOc

template class Vex::Reactor<QosOc::ClassifierConfigSm>;
