#include "agent/explain/Explainer.h"

#include "agent/explain/Differences.h"

namespace QosAgent {

EvidenceReader Explainer::reader() {
    if (!index_) index_ = std::make_unique<NameIndex>(database_);
    return EvidenceReader(database_, *index_);
}

Explanation Explainer::explain(const Question& question) {
    const EvidenceReader reader = this->reader();
    Explanation explanation;
    explanation.askedTerm = question.term;
    explanation.evidence = std::make_unique<const ClassifierEvidence>(
        reader.classifier(Orin::String(question.classifier)));
    const ClassifierEvidence& classifier = *explanation.evidence;
    explanation.findings = findingsOf(classifier);
    const Names ids =
        question.term ? Names{Orin::String(*question.term)} : EvidenceReader::termIds(classifier);
    for (const Orin::String& id : ids) {
        TermEvidence term = reader.term(classifier, id);
        if (!term.isKnown()) continue;
        FindingRows findings = findingsOf(term);
        explanation.terms.push_back({std::move(term), std::move(findings)});
    }
    return explanation;
}

void Explainer::writeDifferences(JsonWriter& writer) {
    QosAgent::writeDifferences(writer, reader());
}

}  // namespace QosAgent
