#pragma once

#include "platform/Orin/Ptr.h"
#include "platform/Orin/String.h"
#include "platform/Orin/Vector.h"
#include "platform/QosOc/ClassifierType.h"
#include "platform/QosOc/State/ClassifiersDir.h"

/// The only code that writes the state tree. Every function reads the current tree and can be
/// repeated; removing an absent object is a no-op. The root must not be null. A caller that writes
/// several times in a row should pass a `StatePlace` instead of the root.
namespace QosOc {

using StateDir = Orin::Ptr<State::ClassifiersDir>;

/// The state tree, with the classifier and term that were looked up last, so that several writes in
/// a row look them up once. Every write clears both. No other code may change the tree between two
/// writes through one place, so a place must not outlive a handler.
class StatePlace {
public:
    explicit StatePlace(const StateDir& root) noexcept : root_(*root) {}
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
    /// Returns the collection of the term that was looked up last. Precondition: there is one.
    State::Terms& terms() const noexcept { return *classifier_->terms(); }
    void forget() const noexcept { classifier_ = nullptr; }

private:
    State::ClassifiersDir& root_;
    mutable State::Classifier* classifier_ = nullptr;
    mutable State::Term* term_ = nullptr;  // of `classifier_`
};

/// Adds the classifier. No-op if it exists: it also keeps its type.
void addClassifier(const StatePlace& place, const Orin::String& name, Classifier::Type type);
inline void addClassifier(const StateDir& root, const Orin::String& name, Classifier::Type type) {
    addClassifier(StatePlace(root), name, type);
}
/// Removes the classifier with its terms.
void deleteClassifier(const StatePlace& place, const Orin::String& name);
inline void deleteClassifier(const StateDir& root, const Orin::String& name) {
    deleteClassifier(StatePlace(root), name);
}

/// Adds the term, and its classifier if absent. No-op if the term exists.
void addClassifierTerm(const StatePlace& place, const Orin::String& name, Classifier::Type type,
                       const Orin::String& termId);
inline void addClassifierTerm(const StateDir& root, const Orin::String& name, Classifier::Type type,
                              const Orin::String& termId) {
    addClassifierTerm(StatePlace(root), name, type, termId);
}
/// Removes the term. The terms container is removed with the last term; the classifier stays.
void deleteClassifierTerm(const StatePlace& place, const Orin::String& name,
                          const Orin::String& termId);
inline void deleteClassifierTerm(const StateDir& root, const Orin::String& name,
                                 const Orin::String& termId) {
    deleteClassifierTerm(StatePlace(root), name, termId);
}

/// Sets the conditions of the term to the DSCP values, and adds the term if absent. A single value
/// is stored as a DSCP, several as a set, in order and with duplicates. Sets the family of `type`
/// and empties the other one. No-op if there are no values.
void addClassifierTermCondition(const StatePlace& place, const Orin::String& name,
                                Classifier::Type type, const Orin::String& termId,
                                Orin::Vector<unsigned char>& values);
inline void addClassifierTermCondition(const StateDir& root, const Orin::String& name,
                                       Classifier::Type type, const Orin::String& termId,
                                       Orin::Vector<unsigned char>& values) {
    addClassifierTermCondition(StatePlace(root), name, type, termId, values);
}
/// Removes the term's conditions: the whole container, or only its contents.
void deleteClassifierTermCondition(const StatePlace& place, const Orin::String& name,
                                   const Orin::String& termId, bool removeConditions);
inline void deleteClassifierTermCondition(const StateDir& root, const Orin::String& name,
                                          const Orin::String& termId, bool removeConditions) {
    deleteClassifierTermCondition(StatePlace(root), name, termId, removeConditions);
}

/// Sets the term's target group, and adds the term if absent.
void addClassifierTermAction(const StatePlace& place, const Orin::String& name,
                             Classifier::Type type, const Orin::String& termId,
                             const Orin::String& targetGroup);
inline void addClassifierTermAction(const StateDir& root, const Orin::String& name,
                                    Classifier::Type type, const Orin::String& termId,
                                    const Orin::String& targetGroup) {
    addClassifierTermAction(StatePlace(root), name, type, termId, targetGroup);
}
/// Clears the term's target group. Keeps the actions container, or adds an empty one.
void deleteClassifierTermAction(const StatePlace& place, const Orin::String& name,
                                const Orin::String& termId);
inline void deleteClassifierTermAction(const StateDir& root, const Orin::String& name,
                                       const Orin::String& termId) {
    deleteClassifierTermAction(StatePlace(root), name, termId);
}

}  // namespace QosOc
