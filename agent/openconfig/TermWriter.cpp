#include "agent/openconfig/TermWriter.h"

namespace QosAgent {
namespace {

using QosOc::Classifier::Type;
using QosOc::Config::Term;
using QosOc::Config::TermActions;
using QosOc::Config::TermConditions;
using QosOc::Config::TermConditionsIpConfig;
using QosOc::Config::Terms;

constexpr std::string_view kConditions = "conditions";
constexpr std::string_view kActions = "actions";
constexpr std::string_view kDscp4 = "conditions/ipv4/dscp";
constexpr std::string_view kDscp6 = "conditions/ipv6/dscp";

Place placeOf(const TermOfClassifier& of) {
    return Place(Places::kClassifiers, of.classifier->name).member("terms/term", of.term->id);
}

bool isIpv6(const TermOfClassifier& of) {
    return of.classifier->family() == Type::IPV6;
}

}  // namespace

Term configuredTerm(const TermOfClassifier& of) {
    Term term(of.term->id);
    if (!of.term->conditions.empty()) {
        TermConditions& conditions = term.conditions.emplace();
        (isIpv6(of) ? conditions.ipv6 : conditions.ipv4) = of.term->conditions;
    }
    if (!of.term->targetGroup.empty()) term.actions = TermActions{of.term->targetGroup};
    return term;
}

void TermWriter::write(Terms& terms, const TermOfClassifier& later, bool wasDescribed) {
    const Place place = placeOf(later);
    const Term wanted = configuredTerm(later);
    const Term* held = terms.term().find(later.term->id);
    if (held == nullptr) {
        ownership_.created(place);
    } else {
        if (!wasDescribed) describe(place, *held);
        if (*held == wanted) return;
        ownership_.changed(place);
        if (!wanted.conditions) ownership_.forget(place.part(kConditions));
        if (!wanted.conditions || !wanted.conditions->ipv4.dscp)
            ownership_.forget(place.part(kDscp4));
        if (!wanted.conditions || !wanted.conditions->ipv6.dscp)
            ownership_.forget(place.part(kDscp6));
        if (!wanted.actions) ownership_.forget(place.part(kActions));
    }
    terms.termIs(wanted);
}

void TermWriter::describe(const Place& place, const Term& held) {
    ownership_.describe(place, false);
    if (held.conditions) ownership_.describe(place.part(kConditions), false);
    if (held.conditions && held.conditions->ipv4.dscp)
        ownership_.describe(place.part(kDscp4), false);
    if (held.conditions && held.conditions->ipv6.dscp)
        ownership_.describe(place.part(kDscp6), false);
    if (held.actions) ownership_.describe(place.part(kActions), false);
}

void TermWriter::remove(Terms& terms, const TermOfClassifier& earlier) {
    const Place place = placeOf(earlier);
    const Term* held = terms.term().find(earlier.term->id);
    if (held == nullptr) return;
    if (ownership_.leave(place)) {
        terms.termDel(earlier.term->id);
        return;
    }
    const Term rest = restOf(place, *held, earlier);
    terms.termIs(rest);
}

/// What stays of a term that is others', or has something of theirs.
Term TermWriter::restOf(const Place& place, const Term& held, const TermOfClassifier& earlier) {
    Term rest = held;
    const auto& described = earlier.term->conditions;
    if (rest.conditions && !described.empty() && ownership_.leave(place.part(kConditions)))
        rest.conditions.reset();
    if (rest.conditions && described.dscp) {
        TermConditionsIpConfig& family =
            isIpv6(earlier) ? rest.conditions->ipv6 : rest.conditions->ipv4;
        const Place dscp = place.part(isIpv6(earlier) ? kDscp6 : kDscp4);
        if (family.dscp && ownership_.leave(dscp)) family.dscp.reset();
    }
    if (rest.actions && !earlier.term->targetGroup.empty() &&
        ownership_.leave(place.part(kActions)))
        rest.actions.reset();
    return rest;
}

}  // namespace QosAgent
