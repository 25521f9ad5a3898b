#pragma once

#include "platform/QosOc/Config/ClassifierConfig.h"
#include "platform/QosOc/Config/Terms.h"
#include "platform/Vex/Entity.h"

namespace QosOc::Config {

/// A configured classifier.
class PLATFORM_API Classifier final : public Vex::Entity<Classifier> {
public:
    static constexpr std::string_view kTypeName = "QosOc::Config::Classifier";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr Vex::Attribute<> kConfig{"config", 259};
    static constexpr Vex::Attribute<> kTerms{"terms", 260};
    static constexpr auto fields() {
        return std::tuple{
            Vex::key("name", 258, &Classifier::name_).hidden(),
            Vex::published(kConfig, &Classifier::config_),
            Vex::published(kTerms, &Classifier::terms_),
        };
    }

    /// Its `config` has the name and no type.
    explicit Classifier(const Orin::String& name);
    ~Classifier() override;

    const Orin::String& name() const noexcept { return name_; }
    const ClassifierConfig& config() const noexcept { return config_; }
    void configIs(const ClassifierConfig& config);
    /// Null when there are none.
    const Orin::Ptr<Terms>& terms() const noexcept { return terms_; }
    void termsIs(const Orin::Ptr<Terms>& terms);

private:
    Orin::String name_;
    ClassifierConfig config_;
    Orin::Ptr<Terms> terms_;
};

}  // namespace QosOc::Config
