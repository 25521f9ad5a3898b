#pragma once

#include <cstdint>

#include "platform/Orin/Ptr.h"
#include "platform/Orin/String.h"
#include "platform/Orin/Vector.h"
#include "platform/QosOc/ClassifierType.h"
#include "platform/QosOc/State/ClassifiersDir.h"

/// The only code that writes the state tree. Every function decides by the tree as it stands and
/// may be repeated; what is absent already is no error. The root is never null.
namespace QosOc {

using StateDir = Orin::Ptr<State::ClassifiersDir>;

/// The state tree, and where in it was looked last: who writes several times in a row need not have
/// the same classifier and term looked up each time. Every change makes it forget. Between two
/// writes through one place nobody else may change the tree, so it does not outlive a handler.
class StatePlace {
public:
    StatePlace(const StateDir& root) noexcept : root_(*root) {}
    StatePlace(const StatePlace&) = delete;
    StatePlace& operator=(const StatePlace&) = delete;

    State::ClassifiersDir& root() const noexcept { return root_; }
    /// Null if there is none.
    State::Classifier* classifier(const Orin::String& name) const noexcept {
        if (classifier_ == nullptr || !(classifier_->name() == name)) {
            classifier_ = root_.classifier(name);
            term_ = nullptr;
        }
        return classifier_;
    }
    /// Null if there is none.
    State::Term* term(const Orin::String& classifierName, const Orin::String& id) const noexcept {
        const State::Classifier* in = classifier(classifierName);
        if (term_ != nullptr && term_->id == id) return term_;
        return term_ = in == nullptr || in->terms() == nullptr ? nullptr : in->terms()->term(id);
    }
    /// Where the term is that was looked up last; there must be one.
    State::Terms& terms() const noexcept { return *classifier_->terms(); }
    void forget() const noexcept { classifier_ = nullptr; }

private:
    State::ClassifiersDir& root_;
    mutable State::Classifier* classifier_ = nullptr;
    mutable State::Term* term_ = nullptr;  // of `classifier_`
};

/// Makes the classifier exist. One that exists keeps everything, the type it was first created
/// with included.
void addClassifier(const StatePlace& place, const Orin::String& name, Classifier::Type type);
/// Removes the classifier with its terms.
void deleteClassifier(const StatePlace& place, const Orin::String& name);

/// How often classifiers or terms were taken away so far, from any tree: where it is what it was,
/// all that was there is still there. Wraps.
std::uint32_t stateRemovals() noexcept;

/// Makes the term exist, and its classifier; a term that exists keeps what it has.
void addClassifierTerm(const StatePlace& place, const Orin::String& name, Classifier::Type type,
                       const Orin::String& termId);
/// Removes the term; the terms container goes with the last one, the classifier stays.
void deleteClassifierTerm(const StatePlace& place, const Orin::String& name,
                          const Orin::String& termId);

/// Makes the DSCP values the conditions of the term, creating what is missing above them: a single
/// value as a DSCP, several as a set, in their order and with their duplicates. The family is that
/// of `type`; the other family's conditions are emptied. No values change nothing at all.
void addClassifierTermCondition(const StatePlace& place, const Orin::String& name,
                                Classifier::Type type, const Orin::String& termId,
                                Orin::Vector<unsigned char>& values);
/// Takes the term's conditions away: the whole container, or its contents only.
void deleteClassifierTermCondition(const StatePlace& place, const Orin::String& name,
                                   const Orin::String& termId, bool removeConditions);

/// Gives a term that is there the target group, or an empty one, without a word; false when there
/// is no such term.
inline bool storedTermActionIs(const StatePlace& place, const Orin::String& name,
                               const Orin::String& termId, const Orin::String& targetGroup) {
    State::Term* term = place.term(name, termId);
    if (term == nullptr) return false;
    if (place.terms().targetGroupIs(*term, targetGroup)) place.forget();
    return true;
}
/// Sets the term's target group, creating what is missing above it.
void addClassifierTermAction(const StatePlace& place, const Orin::String& name,
                             Classifier::Type type, const Orin::String& termId,
                             const Orin::String& targetGroup);
/// Clears the term's target group. The actions container stays, or comes, empty.
void deleteClassifierTermAction(const StatePlace& place, const Orin::String& name,
                                const Orin::String& termId);

}  // namespace QosOc
