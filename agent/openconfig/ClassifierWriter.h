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
    void write(const ConfiguredClassifier& later, const ConfiguredClassifier* earlier);
    void change(QosOc::Config::Classifier& classifier, const ConfiguredClassifier& later,
                const ConfiguredClassifier* earlier);
    void changeType(QosOc::Config::Classifier& classifier, const ConfiguredClassifier& later,
                    const ConfiguredClassifier* earlier);
    void changeTerms(QosOc::Config::Terms& terms, const ConfiguredClassifier& later,
                     const ConfiguredClassifier* earlier);
    void remove(const ConfiguredClassifier& earlier);
    void tellLostTargetGroups(const ConfiguredClassifier& earlier,
                              const ConfiguredClassifier& later);

    Orin::Ptr<QosOc::Config::ClassifiersDir> classifiers_;
    Ownership& ownership_;
    TermWriter termWriter_{ownership_};
};

}  // namespace QosAgent
