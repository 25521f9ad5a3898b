#pragma once

#include <optional>

#include "agent/database/Database.h"
#include "agent/openconfig/AccessListWriter.h"
#include "agent/openconfig/ClassMapWriter.h"
#include "agent/openconfig/ClassifierWriter.h"
#include "agent/openconfig/ForwardingGroupWriter.h"
#include "agent/openconfig/PolicyMapWriter.h"

namespace QosAgent {

/// Makes the database what OpenConfig configurations say, as the device's configuration side would:
/// each takes the place of the one before, by the differences. What others made stays.
class OpenConfigTranslator {
public:
    /// The database must outlive the translator.
    explicit OpenConfigTranslator(Database& database);
    ~OpenConfigTranslator();
    OpenConfigTranslator(const OpenConfigTranslator&) = delete;
    OpenConfigTranslator& operator=(const OpenConfigTranslator&) = delete;

    /// Publishes no more than what differs, in an order in which no term that both documents
    /// configure alike shows another value in between.
    void apply(OpenConfigDocument later);

    /// What was applied last; nothing at first.
    const OpenConfigDocument& document() const { return earlier_; }
    Ownership& ownership() { return ownership_; }
    /// Until `restore` is called, the inputs may be changed without that these changes are taken
    /// for those of others.
    void suspend();
    /// Takes the inputs for what the document made of them, in an earlier run or before they were
    /// changed back. Nothing: no document was ever applied.
    void restore(std::optional<OpenConfigDocument> document);

private:
    void write(const Difference& difference);
    void removeHollow();
    void listen();

    Database& database_;
    Ownership ownership_;
    Touched touched_;
    ForwardingGroupWriter groups_;
    AccessListWriter accessLists_;
    ClassMapWriter classMaps_;
    ClassifierWriter classifiers_;
    PolicyMapWriter policyMaps_;
    OpenConfigDocument earlier_;
    bool isFirst_ = true;
};

}  // namespace QosAgent
