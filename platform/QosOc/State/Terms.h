#pragma once

#include "platform/QosOc/ClassifierType.h"
#include "platform/QosOc/Config/Term.h"
#include "platform/Vex/Entity.h"

namespace QosOc::State {

/// A published term has the shape of a configured one.
using Config::Term;

/// The published terms of a classifier.
class PLATFORM_API Terms final : public Vex::Entity<Terms> {
public:
    static constexpr std::string_view kTypeName = "QosOc::State::Terms";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr Vex::Attribute<Orin::String> kTerm{"term", 258};
    static constexpr auto fields() { return std::tuple{Vex::published(kTerm, &Terms::term_)}; }
    /// By term id.
    using TermById = Vex::HashMap2018<Orin::String, Term, Vex::seedOf("State.Terms.term")>;

    ~Terms() override;

    const TermById& term() const noexcept { return term_; }
    /// The stored term of that id; null if there is none. It stays where it is until it is deleted.
    Term* term(const Orin::String& id) noexcept { return term_.find(id); }
    /// Enters the term, or replaces whole the one with its id.
    void termIs(const Term& term);
    /// Enters a bare term; there must be none of that id.
    void bareTermIs(const Orin::String& id);
    /// Stores a term again with other conditions, or none: `term` is a stored one. False when they
    /// are what it has.
    bool conditionsIs(Term& term, std::optional<Config::TermConditions>&& conditions);
    /// Stores a term again with these DSCP values as its only conditions, for that address family:
    /// `term` is a stored one. False when they are what it has.
    bool dscpsAre(Term& term, QosOc::Classifier::Type family,
                  const Orin::Vector<std::uint8_t>& values);
    /// Stores a term again with that target group, which may be empty: `term` is a stored one.
    /// False when it has it.
    bool targetGroupIs(Term& term, const Orin::String& targetGroup) {
        if (!term.actions)
            term.actions.emplace();
        else if (term.actions->targetGroup == targetGroup)
            return false;
        term.actions->targetGroup = targetGroup;
        publishTerm(term.id);
        return true;
    }
    /// Nothing happens when there is no such term.
    void termDel(const Orin::String& id);

private:
    void publishTerm(const Orin::String& id) const {
        const Orin::String changed = id;
        publishChange(kTerm.id, &changed);
    }

    TermById term_;
};

}  // namespace QosOc::State
