#include "agent/openconfig/Difference.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

namespace QosAgent {
namespace {

const OpenConfigDocument kNothing;

/// Sorts by a place that is looked up once for each item.
template <class Item, class PlaceOf>
void sortByPlace(std::vector<Item>& items, PlaceOf placeOf) {
    if (items.size() < 2) return;
    using Place = decltype(placeOf(items.front()));
    std::vector<std::pair<Place, Item>> placed;
    placed.reserve(items.size());
    for (Item& item : items)
        placed.emplace_back(placeOf(item), std::move(item));
    std::sort(placed.begin(), placed.end(),
              [](const auto& left, const auto& right) { return left.first < right.first; });
    for (std::size_t i = 0; i < items.size(); ++i)
        items[i] = std::move(placed[i].second);
}

const Orin::String& nameOf(const ConfiguredClassifier* before, const ConfiguredClassifier* after) {
    return (after != nullptr ? after : before)->name;
}

}  // namespace

Difference::Difference(const OpenConfigDocument& earlier, const OpenConfigDocument& later,
                       const Touched& touched)
    : earlier_(earlier), later_(later), touched_(touched) {
    compareGroups();
    compareClassifiers();
    if (!touched.isAll()) addTouched();
    comparePairs();
    sort();
}

const ClassifierChange* Difference::find(const Orin::String& classifierName) const {
    const auto at = classifiers_.find(classifierName);
    return at == classifiers_.end() ? nullptr : &at->second;
}

bool Difference::isWhole(const AttachedPair& pair) const {
    return touched_.isAll() || touched_.pairs().contains(pair.pmapName) ||
           !earlier_.attachedPairs.contains(pair.pmapName) ||
           !later_.attachedPairs.contains(pair.pmapName);
}

void Difference::compareGroups() {
    const auto note = [this](const ForwardingGroup* before, const ForwardingGroup* after) {
        if (after != nullptr)
            comingGroups_.push_back(after);
        else if (!later_.groups.contains(before->name))
            goingGroups_.push_back(before);
    };
    if (touched_.isAll()) {
        KeyedList<ForwardingGroup>::eachDifference(kNothing.groups, later_.groups, note);
        KeyedList<ForwardingGroup>::eachDifference(earlier_.groups, kNothing.groups, note);
        return;
    }
    std::unordered_set<Orin::String> noted;
    KeyedList<ForwardingGroup>::eachDifference(
        earlier_.groups, later_.groups,
        [&](const ForwardingGroup* before, const ForwardingGroup* after) {
            note(before, after);
            if (!touched_.groups().empty()) noted.insert((after ? after : before)->name);
        });
    for (const Orin::String& name : touched_.groups()) {
        const ForwardingGroup* after = later_.groups.find(name);
        if (after != nullptr && !noted.contains(name)) comingGroups_.push_back(after);
    }
}

void Difference::compareClassifiers() {
    const auto compare = [this](const ConfiguredClassifier* before,
                                const ConfiguredClassifier* after) {
        compareTerms(changeOf(nameOf(before, after)));
    };
    if (!touched_.isAll()) {
        KeyedList<ConfiguredClassifier>::eachDifference(earlier_.classifiers, later_.classifiers,
                                                        compare);
        return;
    }
    const auto all = [this](const ConfiguredClassifier* before, const ConfiguredClassifier* after) {
        changeOf(nameOf(before, after));
    };
    KeyedList<ConfiguredClassifier>::eachDifference(kNothing.classifiers, later_.classifiers, all);
    KeyedList<ConfiguredClassifier>::eachDifference(earlier_.classifiers, kNothing.classifiers,
                                                    all);
    for (auto& [name, change] : classifiers_)
        addTermsOfBoth(change);
}

ClassifierChange& Difference::changeOf(const Orin::String& name) {
    const auto [at, isNew] = classifiers_.try_emplace(name);
    if (isNew)
        at->second = {earlier_.classifiers.find(name), later_.classifiers.find(name), {}, {}};
    return at->second;
}

void Difference::compareTerms(ClassifierChange& change) {
    static const KeyedList<ConfiguredTerm> kNoTerms;
    const auto& before = change.earlier == nullptr ? kNoTerms : change.earlier->terms;
    const auto& after = change.later == nullptr ? kNoTerms : change.later->terms;
    const bool isFamilyAlike = change.earlier != nullptr && change.later != nullptr &&
                               change.earlier->family() == change.later->family();
    if (!isFamilyAlike) return addTermsOfBoth(change);
    KeyedList<ConfiguredTerm>::eachDifference(
        before, after, [&](const ConfiguredTerm* earlier, const ConfiguredTerm* later) {
            addTerm(change, earlier, later);
        });
}

void Difference::addTermsOfBoth(ClassifierChange& change) {
    change.earlierTerms.clear();
    change.laterTerms.clear();
    if (change.later != nullptr)
        for (const auto& term : change.later->terms.inOrder())
            addTerm(change,
                    change.earlier == nullptr ? nullptr : change.earlier->terms.find(term->id),
                    term.get());
    if (change.earlier == nullptr) return;
    for (const auto& term : change.earlier->terms.inOrder())
        if (change.later == nullptr || !change.later->terms.contains(term->id))
            addTerm(change, term.get(), nullptr);
}

void Difference::addTerm(ClassifierChange& change, const ConfiguredTerm* before,
                         const ConfiguredTerm* after) {
    TermChange term;
    if (before != nullptr) term.earlier = TermOfClassifier{change.earlier, before};
    if (after != nullptr) term.later = TermOfClassifier{change.later, after};
    if (term.earlier) change.earlierTerms.push_back(term);
    if (term.later) change.laterTerms.push_back(term);
}

void Difference::addTouched() {
    for (const Orin::String& name : touched_.classifiers())
        if (earlier_.classifiers.contains(name) || later_.classifiers.contains(name))
            addTermsOfBoth(changeOf(name));
    for (const Touched::TermName& name : touched_.terms())
        addTouchedTerm(name);
}

void Difference::addTouchedTerm(const Touched::TermName& name) {
    const auto earlier = termOf(earlier_, name.first, name.second);
    const auto later = termOf(later_, name.first, name.second);
    if (!earlier && !later) return;
    // Terms that the documents share are not among those that differ.
    const bool isAlike = earlier && later && earlier->term == later->term;
    ClassifierChange& change = changeOf(name.first);
    const bool isFamilyAlike = change.earlier != nullptr && change.later != nullptr &&
                               change.earlier->family() == change.later->family();
    if (!isAlike || !isFamilyAlike || touched_.classifiers().contains(name.first)) return;
    addTerm(change, earlier->term, later->term);
}

void Difference::comparePairs() {
    std::unordered_set<Orin::String> noted;
    const auto coming = [&](const AttachedPair* pair) {
        if (pair != nullptr && noted.insert(pair->pmapName).second) comingPairs_.push_back(pair);
    };
    const auto& before = touched_.isAll() ? kNothing.attachedPairs : earlier_.attachedPairs;
    KeyedList<AttachedPair>::eachDifference(
        before, later_.attachedPairs,
        [&](const AttachedPair*, const AttachedPair* after) { coming(after); });
    KeyedList<AttachedPair>::eachDifference(
        earlier_.attachedPairs, later_.attachedPairs,
        [&](const AttachedPair* earlier, const AttachedPair* after) {
            if (after == nullptr) goingPairs_.push_back(earlier);
        });
    for (const Orin::String& name : touched_.pairs())
        coming(later_.attachedPairs.find(name));
    for (const auto& [name, change] : classifiers_) {
        const Users<AttachedPair>* pairs = later_.pairsOfClassifier.find(name);
        if (pairs == nullptr || (change.earlierTerms.empty() && change.laterTerms.empty()))
            continue;
        for (const auto& pair : pairs->users.inOrder())
            coming(later_.attachedPairs.find(pair->pmapName));
    }
}

void Difference::sort() {
    for (auto& [name, change] : classifiers_) {
        if (change.later != nullptr) comingClassifiers_.push_back(&change);
        if (change.earlier != nullptr) earlierClassifiers_.push_back(&change);
        sortByPlace(change.earlierTerms, [](const TermChange& term) {
            return term.earlier->classifier->terms.orderOf(term.earlier->term->id);
        });
        sortByPlace(change.laterTerms, [](const TermChange& term) {
            return term.later->classifier->terms.orderOf(term.later->term->id);
        });
    }
    sortByPlace(comingGroups_,
                [this](const auto* group) { return later_.groups.orderOf(group->name); });
    sortByPlace(goingGroups_,
                [this](const auto* group) { return earlier_.groups.orderOf(group->name); });
    sortByPlace(comingClassifiers_, [this](const auto* change) {
        return later_.classifiers.orderOf(change->later->name);
    });
    sortByPlace(earlierClassifiers_, [this](const auto* change) {
        return earlier_.classifiers.orderOf(change->earlier->name);
    });
    sortByPlace(comingPairs_, [this](const auto* pair) { return later_.placeOf(*pair); });
    sortByPlace(goingPairs_, [this](const auto* pair) { return earlier_.placeOf(*pair); });
}

}  // namespace QosAgent
