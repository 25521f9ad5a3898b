#include "agent/openconfig/ClassifierWriter.h"

#include <utility>

namespace QosAgent {
namespace {

using QosOc::Classifier::Type;
using QosOc::Config::Classifier;
using QosOc::Config::ClassifiersDir;
using QosOc::Config::Terms;

const KeyedList<ConfiguredTerm> kNoTerms;

const KeyedList<ConfiguredTerm>& termsOf(const ConfiguredClassifier* classifier) {
    return classifier == nullptr ? kNoTerms : classifier->terms;
}

Orin::Ptr<Terms> newTerms(const ConfiguredClassifier& configured) {
    auto terms = Terms::create();
    for (const auto& term : configured.terms.inOrder())
        terms->termIs(configuredTerm({&configured, term.get()}));
    return terms;
}

Place placeOf(const Orin::String& classifierName) {
    return {Places::kClassifiers, classifierName};
}

Place termsPlaceOf(const Classifier& classifier) {
    return placeOf(classifier.name()).part("terms");
}

}  // namespace

ClassifierWriter::ClassifierWriter(Orin::Ptr<ClassifiersDir> classifiers, Ownership& ownership)
    : classifiers_(std::move(classifiers)), ownership_(ownership) {}

void ClassifierWriter::write(const Difference& difference) {
    for (const ClassifierChange* change : difference.comingClassifiers())
        write(*change);
    for (const ClassifierChange* change : difference.earlierClassifiers())
        if (change->later == nullptr) remove(*change);
}

void ClassifierWriter::write(const ClassifierChange& difference) {
    const ConfiguredClassifier& later = *difference.later;
    if (const auto* held = classifiers_->classifier().find(later.name)) {
        ownership_.describe(placeOf(later.name), difference.earlier != nullptr);
        change(*Orin::Ptr<Classifier>(*held), later, difference);
        return;
    }
    const auto classifier = Classifier::create(later.name);
    classifier->configIs({later.name, later.type});
    if (!later.terms.empty()) classifier->termsIs(newTerms(later));
    ownership_.created(placeOf(later.name));
    classifiers_->classifierIs(classifier);
}

void ClassifierWriter::change(Classifier& classifier, const ConfiguredClassifier& later,
                              const ClassifierChange& difference) {
    const ConfiguredClassifier* earlier = difference.earlier;
    const Type family = classifier.config().type.value_or(Type::IPV4);
    changeType(classifier, later, earlier);
    const auto terms = classifier.terms();
    const Place place = termsPlaceOf(classifier);
    if (!terms) {
        if (later.terms.empty()) return;
        ownership_.created(place);
        classifier.termsIs(newTerms(later));
        return;
    }
    const bool hadTerms = !termsOf(earlier).empty();
    if (!later.terms.empty()) ownership_.describe(place, hadTerms);
    changeTerms(*terms, difference);
    if (later.terms.empty() && hadTerms && ownership_.leave(place))
        classifier.termsIs(nullptr);
    else if (family != classifier.config().type.value_or(Type::IPV4))
        // Whoever reads the terms learns the family with them.
        classifier.publishChange(Classifier::kTerms.id, &terms);
}

void ClassifierWriter::changeType(Classifier& classifier, const ConfiguredClassifier& later,
                                  const ConfiguredClassifier* earlier) {
    const auto held = classifier.config().type;
    const Place place = placeOf(later.name).part("config/type");
    const bool hadType = earlier != nullptr && earlier->type;
    if (held && later.type) ownership_.describe(place, hadType);
    if (held == later.type) return;
    ownership_.changed(placeOf(later.name).part("config"));
    if (!later.type) ownership_.forget(place);
    classifier.configIs({later.name, later.type});
}

void ClassifierWriter::changeTerms(Terms& terms, const ClassifierChange& difference) {
    for (const TermChange& term : difference.laterTerms)
        termWriter_.write(terms, *term.later, term.earlier.has_value());
    for (const TermChange& term : difference.earlierTerms)
        if (!term.later) termWriter_.remove(terms, *term.earlier);
}

void ClassifierWriter::remove(const ClassifierChange& difference) {
    const ConfiguredClassifier& earlier = *difference.earlier;
    const auto* held = classifiers_->classifier().find(earlier.name);
    if (held == nullptr) return;
    const Orin::Ptr<Classifier> classifier = *held;
    if (ownership_.leave(placeOf(earlier.name))) {
        classifiers_->classifierDel(earlier.name);
        return;
    }
    ConfiguredClassifier bare;
    bare.name = earlier.name;
    bare.type = classifier->config().type;
    const bool isTypeOwn =
        earlier.type && bare.type && ownership_.leave(placeOf(earlier.name).part("config/type"));
    if (isTypeOwn) bare.type.reset();
    change(*classifier, bare, difference);
}

void ClassifierWriter::tellTermsOfGonePairs(const Difference& difference) {
    for (const AttachedPair* pair : difference.goingPairs())
        for (const Orin::String& name : {pair->ipv4ClassifierName, pair->ipv6ClassifierName})
            if (const ClassifierChange* change = difference.find(name))
                tellLostTargetGroups(*change);
}

void ClassifierWriter::tellLostTargetGroups(const ClassifierChange& change) {
    if (change.later == nullptr) return;
    const auto* classifier = classifiers_->classifier().find(change.later->name);
    if (classifier == nullptr || !(*classifier)->terms()) return;
    const Orin::Ptr<Terms> terms = (*classifier)->terms();
    for (const TermChange& term : change.laterTerms)
        if (term.earlier && !term.earlier->term->targetGroup.empty() &&
            term.later->term->targetGroup.empty())
            terms->publishChange(Terms::kTerm.id, &term.later->term->id);
}

}  // namespace QosAgent
