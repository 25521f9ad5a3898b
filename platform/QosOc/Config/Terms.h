#pragma once

#include "platform/QosOc/Config/Term.h"
#include "platform/Vex/Entity.h"

namespace QosOc::Config {

/// The configured terms of a classifier.
class PLATFORM_API Terms final : public Vex::Entity<Terms> {
public:
    static constexpr std::string_view kTypeName = "QosOc::Config::Terms";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr Vex::Attribute<Orin::String> kTerm{"term", 258};
    static constexpr auto fields() { return std::tuple{Vex::published(kTerm, &Terms::term_)}; }
    /// By term id.
    using TermById = Vex::HashMap2018<Orin::String, Term, Vex::seedOf("Config.Terms.term")>;

    ~Terms() override;

    const TermById& term() const noexcept { return term_; }
    void termIs(const Term& term);
    void termDel(const Orin::String& id);

private:
    TermById term_;
};

}  // namespace QosOc::Config
