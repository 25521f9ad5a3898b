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
    for (const ConfiguredTerm& term : configured.terms)
        terms->termIs(configuredTerm({&configured, &term}));
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
    for (const ConfiguredClassifier& later : difference.later.classifiers)
        write(later, difference.earlier.classifiers.find(later.name));
    for (const ConfiguredClassifier& earlier : difference.earlier.classifiers)
        if (!difference.later.classifiers.contains(earlier.name)) remove(earlier);
}

void ClassifierWriter::write(const ConfiguredClassifier& later,
                             const ConfiguredClassifier* earlier) {
    if (const auto* held = classifiers_->classifier().find(later.name)) {
        ownership_.describe(placeOf(later.name), earlier != nullptr);
        change(*Orin::Ptr<Classifier>(*held), later, earlier);
        return;
    }
    const auto classifier = Classifier::create(later.name);
    classifier->configIs({later.name, later.type});
    if (!later.terms.empty()) classifier->termsIs(newTerms(later));
    ownership_.created(placeOf(later.name));
    classifiers_->classifierIs(classifier);
}

void ClassifierWriter::change(Classifier& classifier, const ConfiguredClassifier& later,
                              const ConfiguredClassifier* earlier) {
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
    changeTerms(*terms, later, earlier);
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

void ClassifierWriter::changeTerms(Terms& terms, const ConfiguredClassifier& later,
                                   const ConfiguredClassifier* earlier) {
    for (const ConfiguredTerm& term : later.terms)
        termWriter_.write(terms, {&later, &term}, termsOf(earlier).contains(term.id));
    for (const ConfiguredTerm& term : termsOf(earlier))
        if (!later.terms.contains(term.id)) termWriter_.remove(terms, {earlier, &term});
}

void ClassifierWriter::remove(const ConfiguredClassifier& earlier) {
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
    change(*classifier, bare, &earlier);
}

void ClassifierWriter::tellTermsOfGonePairs(const Difference& difference) {
    for (const AttachedPair& pair : difference.earlier.attachedPairs) {
        if (difference.later.attachedPairs.contains(pair.pmapName)) continue;
        for (const Orin::String& name : {pair.ipv4ClassifierName, pair.ipv6ClassifierName}) {
            const auto* earlier = difference.earlier.classifiers.find(name);
            const auto* later = difference.later.classifiers.find(name);
            if (earlier != nullptr && later != nullptr) tellLostTargetGroups(*earlier, *later);
        }
    }
}

void ClassifierWriter::tellLostTargetGroups(const ConfiguredClassifier& earlier,
                                            const ConfiguredClassifier& later) {
    const auto* classifier = classifiers_->classifier().find(later.name);
    if (classifier == nullptr || !(*classifier)->terms()) return;
    const Orin::Ptr<Terms> terms = (*classifier)->terms();
    for (const ConfiguredTerm& term : later.terms) {
        const ConfiguredTerm* before = earlier.terms.find(term.id);
        if (term.targetGroup.empty() && before != nullptr && !before->targetGroup.empty())
            terms->publishChange(Terms::kTerm.id, &term.id);
    }
}

}  // namespace QosAgent
