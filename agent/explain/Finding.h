#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "agent/explain/Evidence.h"

namespace QosAgent {

/// One reason why the state is not what was configured: a row of the one table of all reasons.
struct Finding {
    std::string_view code;       ///< as programs read it
    std::string_view of;         ///< what it is about: `classifier`, `term`, or both
    std::string_view condition;  ///< when it holds
    std::string_view sentence;   ///< what it says to people
    std::string_view advice;     ///< what to do about it
    /// Whether it holds for a classifier, or for a term; null where it is not about such a thing.
    bool (*holdsForClassifier)(const ClassifierEvidence& classifier);
    bool (*holdsForTerm)(const TermEvidence& term);
};

/// All findings, in the order in which they are reported.
std::span<const Finding> findingTable();

/// Rows of the table that hold for one thing, in the order of the table.
using FindingRows = std::vector<const Finding*>;
FindingRows findingsOf(const ClassifierEvidence& classifier);
FindingRows findingsOf(const TermEvidence& term);

/// True if a policy map, and not the configuration, decides the target group of a configured term,
/// and decides otherwise.
bool isDecidedByPolicyMap(const TermEvidence& term);

}  // namespace QosAgent
