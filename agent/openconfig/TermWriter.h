#pragma once

#include "agent/openconfig/OpenConfigDocument.h"
#include "agent/openconfig/Ownership.h"
#include "platform/QosOc/Config/Terms.h"

namespace QosAgent {

/// The term as the configured classifiers hold it.
QosOc::Config::Term configuredTerm(const TermOfClassifier& of);

/// Keeps the terms of a configured classifier, down to their optional parts.
class TermWriter {
public:
    /// `ownership` must outlive the writer.
    explicit TermWriter(Ownership& ownership) : ownership_(ownership) {}

    void write(QosOc::Config::Terms& terms, const TermOfClassifier& later, bool wasDescribed);
    void remove(QosOc::Config::Terms& terms, const TermOfClassifier& earlier);

private:
    void describe(const Place& place, const QosOc::Config::Term& held);
    QosOc::Config::Term restOf(const Place& place, const QosOc::Config::Term& held,
                               const TermOfClassifier& earlier);

    Ownership& ownership_;
};

}  // namespace QosAgent
