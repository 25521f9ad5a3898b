#include "agent/openconfig/ClassifierWriter.h"

#include <utility>

namespace QosAgent {
namespace {

using QosOc::Classifier::Type;
using QosOc::Config::Classifier;
using QosOc::Config::ClassifiersDir;
using QosOc::Config::Term;
using QosOc::Config::TermActions;
using QosOc::Config::TermConditions;
using QosOc::Config::Terms;

const KeyedList<ConfiguredTerm> kNoTerms;

const KeyedList<ConfiguredTerm>& termsOf(const ConfiguredClassifier* classifier) {
    return classifier == nullptr ? kNoTerms : classifier->terms;
}

Term valueOf(const ConfiguredTerm& configured, Type family) {
    Term term(configured.id);
    if (!configured.conditions.empty()) {
        TermConditions& conditions = term.conditions.emplace();
        (family == Type::IPV6 ? conditions.ipv6 : conditions.ipv4) = configured.conditions;
    }
    if (!configured.targetGroup.empty()) term.actions = TermActions{configured.targetGroup};
    return term;
}

Orin::Ptr<Terms> newTerms(const ConfiguredClassifier& configured) {
    auto terms = Terms::create();
    for (const ConfiguredTerm& term : configured.terms)
        terms->termIs(valueOf(term, configured.family()));
    return terms;
}

}  // namespace

ClassifierWriter::ClassifierWriter(Orin::Ptr<ClassifiersDir> classifiers, Found& found)
    : classifiers_(std::move(classifiers)), found_(found) {}

void ClassifierWriter::write(const Difference& difference) {
    for (const ConfiguredClassifier& later : difference.later.classifiers)
        write(later, difference.earlier.classifiers.find(later.name));
    for (const ConfiguredClassifier& earlier : difference.earlier.classifiers)
        if (!difference.later.classifiers.contains(earlier.name)) remove(earlier);
}

void ClassifierWriter::write(const ConfiguredClassifier& later,
                             const ConfiguredClassifier* earlier) {
    if (const auto* held = classifiers_->classifier().find(later.name)) {
        if (earlier == nullptr) found_.note(*classifiers_, later.name);
        change(*Orin::Ptr<Classifier>(*held), later, earlier);
        return;
    }
    const auto classifier = Classifier::create(later.name);
    classifier->configIs({later.name, later.type});
    if (!later.terms.empty()) classifier->termsIs(newTerms(later));
    classifiers_->classifierIs(classifier);
}

void ClassifierWriter::change(Classifier& classifier, const ConfiguredClassifier& later,
                              const ConfiguredClassifier* earlier) {
    const Type family = classifier.config().type.value_or(Type::IPV4);
    classifier.configIs({later.name, later.type});
    const auto terms = classifier.terms();
    if (!terms) {
        if (!later.terms.empty()) classifier.termsIs(newTerms(later));
        return;
    }
    if (termsOf(earlier).empty() && !later.terms.empty())
        found_.note(classifier, Classifier::kTerms.id);
    changeTerms(*terms, later, earlier);
    const bool isMade = later.terms.empty() && !termsOf(earlier).empty() &&
                        !found_.release(classifier, Classifier::kTerms.id);
    if (isMade && terms->term().empty())
        classifier.termsIs(nullptr);
    else if (family != later.family())
        // Whoever reads the terms learns the family with them.
        classifier.publishChange(Classifier::kTerms.id, &terms);
}

void ClassifierWriter::changeTerms(Terms& terms, const ConfiguredClassifier& later,
                                   const ConfiguredClassifier* earlier) {
    for (const ConfiguredTerm& term : later.terms) {
        if (!termsOf(earlier).contains(term.id) && terms.term().find(term.id) != nullptr)
            found_.note(terms, term.id);
        terms.termIs(valueOf(term, later.family()));
    }
    for (const ConfiguredTerm& term : termsOf(earlier))
        if (!later.terms.contains(term.id) && !found_.release(terms, term.id))
            terms.termDel(term.id);
}

void ClassifierWriter::remove(const ConfiguredClassifier& earlier) {
    if (!found_.release(*classifiers_, earlier.name)) {
        classifiers_->classifierDel(earlier.name);
        return;
    }
    const auto* held = classifiers_->classifier().find(earlier.name);
    if (held == nullptr) return;
    const Orin::Ptr<Classifier> classifier = *held;
    ConfiguredClassifier bare;
    bare.name = earlier.name;
    bare.type = classifier->config().type;
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
