#pragma once

#include <string>

#include "agent/database/Database.h"
#include "agent/documents/DocumentFile.h"
#include "agent/openconfig/OpenConfigReader.h"

namespace QosAgent {

/// Checks documents one by one and applies nothing.
class DocumentCheck {
public:
    /// The most faults that are reported for one document.
    static constexpr std::size_t kMostFaults = 20;

    explicit DocumentCheck(Strictness strictness) : strictness_(strictness) {}

    /// Reads a document and reports all of its faults and warnings on standard error; for malformed
    /// JSON, the first fault only. Returns true if it has no fault.
    bool check(const std::string& name);

private:
    bool checkState(const DocumentFile& document);
    bool checkConfiguration(const DocumentFile& document);

    Database database_;  ///< stays empty; describes the subtrees
    Strictness strictness_;
};

}  // namespace QosAgent
