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

/// Makes the classifier exist. One that exists keeps everything, the type it was first created
/// with included.
void addClassifier(const StateDir& root, const Orin::String& name, Classifier::Type type);
/// Removes the classifier with its terms.
void deleteClassifier(const StateDir& root, const Orin::String& name);

/// Makes the term exist, and its classifier; a term that exists keeps what it has.
void addClassifierTerm(const StateDir& root, const Orin::String& name, Classifier::Type type,
                       const Orin::String& termId);
/// Removes the term; the terms container goes with the last one, the classifier stays.
void deleteClassifierTerm(const StateDir& root, const Orin::String& name,
                          const Orin::String& termId);

/// Makes the DSCP values the conditions of the term, creating what is missing above them: a single
/// value as a DSCP, several as a set, in their order and with their duplicates. The family is that
/// of `type`; the other family's conditions are emptied. No values change nothing at all.
void addClassifierTermCondition(const StateDir& root, const Orin::String& name,
                                Classifier::Type type, const Orin::String& termId,
                                Orin::Vector<unsigned char>& values);
/// Takes the term's conditions away: the whole container, or its contents only.
void deleteClassifierTermCondition(const StateDir& root, const Orin::String& name,
                                   const Orin::String& termId, bool removeConditions);

/// Sets the term's target group, creating what is missing above it.
void addClassifierTermAction(const StateDir& root, const Orin::String& name, Classifier::Type type,
                             const Orin::String& termId, const Orin::String& targetGroup);
/// Clears the term's target group. The actions container stays, or comes, empty.
void deleteClassifierTermAction(const StateDir& root, const Orin::String& name,
                                const Orin::String& termId);

}  // namespace QosOc
