#pragma once

#include "platform/QosOc/State/Classifier.h"
#include "platform/Vex/Entity.h"

namespace QosOc::State {

/// The published classifiers; mounted at "qos/openconfig/state/classifiers".
class PLATFORM_API ClassifiersDir final : public Vex::Entity<ClassifiersDir> {
public:
    static constexpr std::string_view kTypeName = "QosOc::State::ClassifiersDir";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr Vex::Attribute<Orin::String> kClassifier{"classifier", 258};
    static constexpr auto fields() {
        return std::tuple{Vex::published(kClassifier, &ClassifiersDir::classifier_)};
    }
    /// By classifier name.
    using ClassifierByName = Vex::HashMap2018<Orin::String, Orin::Ptr<Classifier>,
                                              Vex::seedOf("State.ClassifiersDir.classifier")>;

    ~ClassifiersDir() override;

    const ClassifierByName& classifier() const noexcept { return classifier_; }
    /// Returns the classifier of this name; null if absent.
    Classifier* classifier(const Orin::String& name) const noexcept {
        const Orin::Ptr<Classifier>* held = classifier_.find(name);
        return held == nullptr ? nullptr : held->get();
    }
    /// Returns the classifier of this name; creates it without state and terms if absent.
    Orin::Ptr<Classifier> classifierIs(const Orin::String& name);
    /// Removes the classifier with its terms. No-op if absent.
    void classifierDel(const Orin::String& name);

private:
    ClassifierByName classifier_;
};

}  // namespace QosOc::State
