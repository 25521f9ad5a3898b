#pragma once

#include "agent/openconfig/Difference.h"
#include "agent/openconfig/Ownership.h"
#include "agent/openconfig/TermWriter.h"
#include "platform/QosOc/Config/ClassifiersDir.h"

namespace QosAgent {

/// Keeps the configured classifiers with their terms.
class ClassifierWriter {
public:
    /// What is passed outlives the writer.
    ClassifierWriter(Orin::Ptr<QosOc::Config::ClassifiersDir> classifiers, Ownership& ownership);

    void write(const Difference& difference);
    /// Publishes again the terms that lost their target group while a policy map that goes still
    /// had their classifier: until it was gone, nobody else could act on that change.
    void tellTermsOfGonePairs(const Difference& difference);

private:
    void write(const ClassifierChange& difference);
    void change(QosOc::Config::Classifier& classifier, const ConfiguredClassifier& later,
                const ClassifierChange& difference);
    void changeType(QosOc::Config::Classifier& classifier, const ConfiguredClassifier& later,
                    const ConfiguredClassifier* earlier);
    void changeTerms(QosOc::Config::Terms& terms, const ClassifierChange& difference);
    void remove(const ClassifierChange& difference);
    void tellLostTargetGroups(const ClassifierChange& change);

    Orin::Ptr<QosOc::Config::ClassifiersDir> classifiers_;
    Ownership& ownership_;
    TermWriter termWriter_{ownership_};
};

}  // namespace QosAgent
