#pragma once

#include "QosOpenConfig/QosOpenConfigClassifierStateSm/ClassifiersWithPmap.h"
#include "QosOpenConfig/QosOpenConfigClassifierStateSm/StateWriter.h"
#include "platform/QosOc/Config/Terms.h"
#include "platform/Vex/Reactor.h"

namespace QosOc {

/// Publishes the configured target groups of one classifier's terms, unless a policy map uses the
/// classifier: then the policy map's machine sets them.
class ClassifierTermsSm final : public Vex::Reactor<ClassifierTermsSm> {
public:
    static constexpr std::string_view kTypeName = "QosOc::ClassifierTermsSm";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr auto fields() {
        return std::tuple{
            Vex::watched("classifierTermsConfig", 1, &ClassifierTermsSm::classifierTermsConfig_,
                         classifierTermsConfigDispatch),
            Vex::given("classifierName", 2, &ClassifierTermsSm::classifierName_),
            Vex::given("classifierType", 3, &ClassifierTermsSm::classifierType_),
            Vex::given("classifiersWithPmap", 4, &ClassifierTermsSm::classifiersWithPmap_),
            Vex::given("classifierStateDir", 5, &ClassifierTermsSm::classifierStateDir_),
        };
    }

    ClassifierTermsSm(const Orin::Ptr<const Config::Terms>& classifierTermsConfig,
                      const Orin::String& classifierName, Classifier::Type classifierType,
                      const Orin::Ptr<const ClassifiersWithPmap>& classifiersWithPmap,
                      const StateDir& classifierStateDir);
    ~ClassifierTermsSm() override { stop(); }
    static Orin::Ptr<ClassifierTermsSm> ClassifierTermsSmIs(
        const Orin::Ptr<const Config::Terms>& classifierTermsConfig,
        const Orin::String& classifierName, Classifier::Type classifierType,
        const Orin::Ptr<const ClassifiersWithPmap>& classifiersWithPmap,
        const StateDir& classifierStateDir);

    void handleInitialized();
    void handleClassifierTerm(const Orin::String& termId);
    /// Clears the action of every configured term; terms and classifier stay.
    void doPrepareToDie();
    /// Sets the target group, or clears it if `targetGroup` is empty.
    void updateClassifierTermActionStatePath(const Orin::String& termId,
                                             const Orin::String& targetGroup);

    static constexpr Orin::Dispatch classifierTermsConfigDispatch =
        Vex::dispatchTo<ClassifierTermsSm,
                        Vex::On<Config::Terms::kTerm, &ClassifierTermsSm::handleClassifierTerm>>;

private:
    Vex::Watched<Config::Terms> classifierTermsConfig_;
    Orin::String classifierName_;
    Classifier::Type classifierType_;
    Orin::Ptr<const ClassifiersWithPmap> classifiersWithPmap_;
    StateDir classifierStateDir_;
};

Orin::Ptr<ClassifierTermsSm> classifierTermsSmFactory(
    const Orin::Ptr<const Config::Terms>& classifierTermsConfig, const Orin::String& classifierName,
    Classifier::Type classifierType,
    const Orin::Ptr<const ClassifiersWithPmap>& classifiersWithPmap,
    const StateDir& classifierStateDir);

}  // namespace QosOc

extern template class Vex::Reactor<QosOc::ClassifierTermsSm>;
