#include "QosOpenConfig/QosOpenConfigClassifierStateSm/ClassifierTermsSm.h"

#include "QosOpenConfig/QosOpenConfigClassifierStateSm/Trace.h"
#include "platform/Vex/Derive.h"

namespace QosOc {
namespace {

using Orin::String;

constexpr auto kHandleInitialized =
    tracePoint("handleInitialized", "void QosOc::ClassifierTermsSm::handleInitialized()");
constexpr auto kHandleClassifierTerm = tracePoint(
    "handleClassifierTerm", "void QosOc::ClassifierTermsSm::handleClassifierTerm(const String&)");
constexpr auto kUpdateClassifierTermActionStatePath =
    tracePoint("updateClassifierTermActionStatePath",
               "void QosOc::ClassifierTermsSm::updateClassifierTermActionStatePath(const String&, "
               "const String&)");
constexpr auto kDoPrepareToDie =
    tracePoint("doPrepareToDie", "void QosOc::ClassifierTermsSm::doPrepareToDie()");

}  // namespace

constinit const Vex::TypeRecord ClassifierTermsSm::kTypeRecord = Vex::recordOf<ClassifierTermsSm>();

ClassifierTermsSm::ClassifierTermsSm(
    const Orin::Ptr<const Config::Terms>& classifierTermsConfig, const String& classifierName,
    Classifier::Type classifierType,
    const Orin::Ptr<const ClassifiersWithPmap>& classifiersWithPmap,
    const StateDir& classifierStateDir)
    : classifierTermsConfig_(classifierTermsConfig),
      classifierName_(classifierName),
      classifierType_(classifierType),
      classifiersWithPmap_(classifiersWithPmap),
      classifierStateDir_(classifierStateDir) {
    start();
}

Orin::Ptr<ClassifierTermsSm> ClassifierTermsSm::ClassifierTermsSmIs(
    const Orin::Ptr<const Config::Terms>& classifierTermsConfig, const String& classifierName,
    Classifier::Type classifierType,
    const Orin::Ptr<const ClassifiersWithPmap>& classifiersWithPmap,
    const StateDir& classifierStateDir) {
    return create(classifierTermsConfig, classifierName, classifierType, classifiersWithPmap,
                  classifierStateDir);
}

Orin::Ptr<ClassifierTermsSm> classifierTermsSmFactory(
    const Orin::Ptr<const Config::Terms>& classifierTermsConfig, const String& classifierName,
    Classifier::Type classifierType,
    const Orin::Ptr<const ClassifiersWithPmap>& classifiersWithPmap,
    const StateDir& classifierStateDir) {
    return ClassifierTermsSm::ClassifierTermsSmIs(classifierTermsConfig, classifierName,
                                                  classifierType, classifiersWithPmap,
                                                  classifierStateDir);
}

void ClassifierTermsSm::handleInitialized() {
    traceOf(this, kHandleInitialized, ", classifierName = ", classifierName_,
            ", classifierType = ", classifierType_);
    for (const auto& member : classifierTermsConfig_->term())
        handleClassifierTerm(member.key);
}

void ClassifierTermsSm::handleClassifierTerm(const String& termId) {
    traceOf(this, kHandleClassifierTerm, ", classifierName = ", classifierName_,
            ", classifierType = ", classifierType_, ", termId = ", termId);
    const Config::Term* term = classifierTermsConfig_->term().find(termId);
    const bool hasActions = term != nullptr && term->actions;
    updateClassifierTermActionStatePath(termId,
                                        hasActions ? term->actions->targetGroup : String::none());
}

void ClassifierTermsSm::updateClassifierTermActionStatePath(const String& termId,
                                                            const String& targetGroup) {
    traceOf(this, kUpdateClassifierTermActionStatePath, ", classifierName = ", classifierName_,
            ", classifierType = ", classifierType_, ", termId = ", termId,
            ", targetGroup = ", targetGroup);
    const Config::ClassifierConfig key{classifierName_, classifierType_};
    if (classifiersWithPmap_->isInUse(key)) {
        traceOf(this, kUpdateClassifierTermActionStatePath, " classifier : ", key,
                " is a part of pmap(s), skipping");
        return;
    }
    if (targetGroup.empty())
        deleteClassifierTermAction(classifierStateDir_, classifierName_, termId);
    else
        addClassifierTermAction(classifierStateDir_, classifierName_, classifierType_, termId,
                                targetGroup);
}

void ClassifierTermsSm::doPrepareToDie() {
    traceOf(this, kDoPrepareToDie, ", classifierName = ", classifierName_,
            ", classifierType = ", classifierType_);
    for (const auto& member : classifierTermsConfig_->term())
        updateClassifierTermActionStatePath(member.key, String());
}

}  // namespace QosOc

template class Vex::Reactor<QosOc::ClassifierTermsSm>;
