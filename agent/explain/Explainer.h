#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "agent/explain/Finding.h"
#include "agent/explain/Question.h"
#include "agent/json/JsonWriter.h"

namespace QosAgent {

/// Why a term has the state that it has.
struct TermExplanation {
    TermEvidence evidence;
    FindingRows findings;
};

/// Why a classifier has the state that it has. Valid until the database changes.
struct Explanation {
    /// On the heap, as the terms refer to it.
    std::unique_ptr<const ClassifierEvidence> evidence;
    FindingRows findings;
    std::vector<TermExplanation> terms;  ///< ascending by id
    std::optional<std::string> askedTerm;

    /// False if nobody knows what was asked for, be it a classifier or a term.
    bool isKnown() const { return askedTerm ? !terms.empty() : evidence->isKnown(); }
};

/// Answers why the state is what it is. Reads the database; changes nothing in it.
///
/// The first answer costs a pass over the names in the database, from which the index is made. All
/// others cost what they find.
class Explainer {
public:
    /// The database must outlive the explainer.
    explicit Explainer(const Database& database) : database_(database) {}

    Explanation explain(const Question& question);
    /// Writes what is configured and is not so in the state: an object by classifier, `{}` if all
    /// that is configured is applied. Linear in what is configured and what was made from it.
    void writeDifferences(JsonWriter& writer);

private:
    EvidenceReader reader();

    const Database& database_;
    std::unique_ptr<const NameIndex> index_;  ///< null until the first question
};

/// Writes an explanation as `print` does.
void writeExplanation(JsonWriter& writer, const Explanation& explanation);

/// Writes the member `findings`, or nothing where there are none.
void writeFindings(JsonWriter& writer, const FindingRows& findings);

}  // namespace QosAgent
