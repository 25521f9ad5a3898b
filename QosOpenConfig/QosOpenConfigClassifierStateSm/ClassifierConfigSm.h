#pragma once

#include "QosOpenConfig/QosOpenConfigClassifierStateSm/ClassifierTermsSm.h"
#include "platform/QosOc/Config/Classifier.h"

namespace QosOc {

/// Keeps one ClassifierTermsSm while a configured classifier has terms. Writes nothing itself.
class ClassifierConfigSm final : public Vex::Reactor<ClassifierConfigSm> {
public:
    static constexpr std::string_view kTypeName = "QosOc::ClassifierConfigSm";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr auto fields() {
        return std::tuple{
            Vex::watched("classifierConfig", 1, &ClassifierConfigSm::classifierConfig_,
                         classifierConfigDispatch),
            Vex::given("classifiersWithPmap", 2, &ClassifierConfigSm::classifiersWithPmap_),
            Vex::given("classifierStateDir", 3, &ClassifierConfigSm::classifierStateDir_),
            Vex::own("classifierTermsSm", 4, &ClassifierConfigSm::classifierTermsSm_),
        };
    }

    ClassifierConfigSm(const Orin::Ptr<const Config::Classifier>& classifierConfig,
                       const Orin::Ptr<const ClassifiersWithPmap>& classifiersWithPmap,
                       const StateDir& classifierStateDir);
    ~ClassifierConfigSm() override { stop(); }
    static Orin::Ptr<ClassifierConfigSm> ClassifierConfigSmIs(
        const Orin::Ptr<const Config::Classifier>& classifierConfig,
        const Orin::Ptr<const ClassifiersWithPmap>& classifiersWithPmap,
        const StateDir& classifierStateDir);

    /// Replaces a child that was created from other inputs; the old one is silenced and removes no
    /// state. Throws `MutatorArgNullPointerException` if the first input is null.
    const Orin::Ptr<ClassifierTermsSm>& classifierTermsSmIs(
        const Orin::Ptr<const Config::Terms>& terms, const Orin::String& name,
        Classifier::Type type, const Orin::Ptr<const ClassifiersWithPmap>& classifiersWithPmap,
        const StateDir& classifierStateDir);
    Orin::Ptr<ClassifierTermsSm> classifierTermsSmDel();

    void handleInitialized();
    void handleClassifierTerms();
    /// Lets the child clear the target groups that it wrote; the classifier stays.
    void doPrepareToDie();

    static constexpr Orin::Dispatch classifierConfigDispatch =
        Vex::dispatchTo<ClassifierConfigSm, Vex::On<Config::Classifier::kTerms,
                                                    &ClassifierConfigSm::handleClassifierTerms>>;

private:
    Vex::Watched<Config::Classifier> classifierConfig_;
    Orin::Ptr<const ClassifiersWithPmap> classifiersWithPmap_;
    StateDir classifierStateDir_;
    Vex::Child<ClassifierTermsSm> classifierTermsSm_;
};

Orin::Ptr<ClassifierConfigSm> classifierConfigSmFactory(
    const Orin::Ptr<const Config::Classifier>& classifierConfig,
    const Orin::Ptr<const ClassifiersWithPmap>& classifiersWithPmap,
    const StateDir& classifierStateDir);

}  // namespace QosOc

extern template class Vex::Reactor<QosOc::ClassifierConfigSm>;
