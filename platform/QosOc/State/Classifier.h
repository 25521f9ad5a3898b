#pragma once

#include "platform/Orin/String.h"
#include "platform/QosOc/ClassifierType.h"
#include "platform/QosOc/State/Terms.h"
#include "platform/Vex/Entity.h"

namespace QosOc::State {

/// Name and address family of a published classifier: `classifier/state` of openconfig-qos.
class PLATFORM_API ClassifierState {
public:
    static constexpr std::string_view kTypeName = "QosOc::State::ClassifierState";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr auto fields() {
        return std::tuple{
            Vex::key("name", 1, &ClassifierState::name),
            Vex::field("type", 2, &ClassifierState::type),
        };
    }

    Orin::String name;
    QosOc::Classifier::Type type{};

    friend bool operator==(const ClassifierState&, const ClassifierState&) = default;
};

/// A published classifier.
class PLATFORM_API Classifier final : public Vex::Entity<Classifier> {
public:
    static constexpr std::string_view kTypeName = "QosOc::State::Classifier";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr Vex::Attribute<> kState{"state", 259};
    static constexpr Vex::Attribute<> kTerms{"terms", 260};
    static constexpr auto fields() {
        return std::tuple{
            Vex::key("name", 258, &Classifier::name_).hidden(),
            Vex::published(kState, &Classifier::state_),
            Vex::published(kTerms, &Classifier::terms_),
        };
    }

    explicit Classifier(const Orin::String& name);
    ~Classifier() override;

    const Orin::String& name() const noexcept { return name_; }
    /// Empty until it is first set.
    const ClassifierState& state() const noexcept { return state_; }
    void stateIs(const ClassifierState& state);
    /// Null when there are none.
    Terms* terms() const noexcept { return terms_.get(); }
    /// Returns the terms; creates an empty collection if absent.
    Orin::Ptr<Terms> termsIs();
    /// No-op if absent.
    void termsDel();

private:
    Orin::String name_;
    ClassifierState state_;
    Orin::Ptr<Terms> terms_;
};

}  // namespace QosOc::State
