#pragma once

#include <optional>
#include <unordered_map>
#include <vector>

#include "agent/openconfig/OpenConfigDocument.h"
#include "agent/openconfig/Touched.h"

namespace QosAgent {

/// A term that two documents have otherwise; at least one of them has it.
struct TermChange {
    std::optional<TermOfClassifier> earlier;
    std::optional<TermOfClassifier> later;
};

/// A classifier that two documents have otherwise, or whose terms they do.
struct ClassifierChange {
    const ConfiguredClassifier* earlier;   ///< null: the earlier document does not have it
    const ConfiguredClassifier* later;     ///< null: the later document does not have it
    std::vector<TermChange> earlierTerms;  ///< those that the earlier document has, in its order
    std::vector<TermChange> laterTerms;    ///< those that the later document has, in its order
};

/// Where two documents, one of which takes the place of the other, differ, and what of them others
/// touched meanwhile. Whatever documents share is not looked at.
class Difference {
public:
    /// The documents must outlive the difference.
    Difference(const OpenConfigDocument& earlier, const OpenConfigDocument& later,
               const Touched& touched);

    const OpenConfigDocument& earlier() const { return earlier_; }
    const OpenConfigDocument& later() const { return later_; }

    /// Of the later document, in its order.
    const std::vector<const ForwardingGroup*>& comingGroups() const { return comingGroups_; }
    /// Those of the earlier document that the later does not have.
    const std::vector<const ForwardingGroup*>& goingGroups() const { return goingGroups_; }
    const std::vector<const ClassifierChange*>& comingClassifiers() const {
        return comingClassifiers_;
    }
    const std::vector<const ClassifierChange*>& earlierClassifiers() const {
        return earlierClassifiers_;
    }
    /// Null if the documents have it alike.
    const ClassifierChange* find(const Orin::String& classifierName) const;
    const std::vector<const AttachedPair*>& comingPairs() const { return comingPairs_; }
    const std::vector<const AttachedPair*>& goingPairs() const { return goingPairs_; }
    /// All terms of the pair must be compared, not only those that differ.
    bool isWhole(const AttachedPair& pair) const;

    /// Calls `visit` with each `TermChange` that has a later term, in the order of the document.
    template <class Visit>
    void eachLaterTerm(Visit visit) const {
        for (const ClassifierChange* classifier : comingClassifiers_)
            for (const TermChange& term : classifier->laterTerms)
                visit(term);
    }
    template <class Visit>
    void eachEarlierTerm(Visit visit) const {
        for (const ClassifierChange* classifier : earlierClassifiers_)
            for (const TermChange& term : classifier->earlierTerms)
                visit(term);
    }

private:
    void compareGroups();
    void compareClassifiers();
    void compareTerms(ClassifierChange& change);
    void addTouched();
    void addTouchedTerm(const Touched::TermName& name);
    ClassifierChange& changeOf(const Orin::String& classifierName);
    void addTerm(ClassifierChange& change, const ConfiguredTerm* before,
                 const ConfiguredTerm* after);
    void addTermsOfBoth(ClassifierChange& change);
    void comparePairs();
    void sort();

    const OpenConfigDocument& earlier_;
    const OpenConfigDocument& later_;
    const Touched& touched_;
    std::vector<const ForwardingGroup*> comingGroups_, goingGroups_;
    std::unordered_map<Orin::String, ClassifierChange> classifiers_;
    std::vector<const ClassifierChange*> comingClassifiers_, earlierClassifiers_;
    std::vector<const AttachedPair*> comingPairs_, goingPairs_;
};

}  // namespace QosAgent
