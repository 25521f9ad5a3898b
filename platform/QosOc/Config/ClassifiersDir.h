#pragma once

#include "platform/QosOc/Config/Classifier.h"
#include "platform/Vex/Entity.h"

namespace QosOc::Config {

/// The configured classifiers; mounted at "qos/openconfig/config/classifiers".
class PLATFORM_API ClassifiersDir final : public Vex::Entity<ClassifiersDir> {
public:
    static constexpr std::string_view kTypeName = "QosOc::Config::ClassifiersDir";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr Vex::Attribute<Orin::String> kClassifier{"classifier", 258};
    static constexpr auto fields() {
        return std::tuple{Vex::published(kClassifier, &ClassifiersDir::classifier_)};
    }
    /// By classifier name.
    using ClassifierByName = Vex::HashMap2018<Orin::String, Orin::Ptr<Classifier>,
                                              Vex::seedOf("Config.ClassifiersDir.classifier")>;

    ~ClassifiersDir() override;

    const ClassifierByName& classifier() const noexcept { return classifier_; }
    void classifierIs(const Orin::Ptr<Classifier>& classifier);
    Orin::Ptr<Classifier> classifierDel(const Orin::String& name);

private:
    ClassifierByName classifier_;
};

}  // namespace QosOc::Config
