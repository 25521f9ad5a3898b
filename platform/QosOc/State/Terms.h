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
    /// Returns the stored term of this id, valid until it is removed; null if absent.
    Term* term(const Orin::String& id) noexcept { return term_.find(id); }
    /// Inserts the term, or replaces the whole term with its id.
    void termIs(const Term& term);
    /// Inserts a term without conditions and actions. Precondition: there is none of this id.
    void bareTermIs(const Orin::String& id);
    /// Stores a term with other conditions, or none. Precondition: `term` is a stored term. Returns
    /// false if its conditions are equal already.
    bool conditionsIs(Term& term, std::optional<Config::TermConditions>&& conditions);
    /// Stores a term with these DSCP values of this address family as its only conditions.
    /// Precondition: `term` is a stored term. Returns false if its conditions are equal already.
    bool dscpsAre(Term& term, QosOc::Classifier::Type family,
                  const Orin::Vector<std::uint8_t>& values);
    /// Stores a term with this target group, which may be empty. Precondition: `term` is a stored
    /// term. Returns false if its target group is equal already.
    bool targetGroupIs(Term& term, const Orin::String& targetGroup) {
        if (!term.actions)
            term.actions.emplace();
        else if (term.actions->targetGroup == targetGroup)
            return false;
        term.actions->targetGroup = targetGroup;
        publishTerm(term.id);
        return true;
    }
    /// No-op if absent.
    void termDel(const Orin::String& id);

private:
    void publishTerm(const Orin::String& id) const {
        const Orin::String changed = id;
        publishChange(kTerm.id, &changed);
    }

    TermById term_;
};

}  // namespace QosOc::State
