#include "agent/output/ExplanationText.h"

#include <algorithm>

#include "agent/json/Visible.h"
#include "agent/output/Folding.h"
#include "agent/output/MatchText.h"
#include "agent/output/TermSources.h"

namespace QosAgent {
namespace {

using Orin::String;
using QosOc::Classifier::Type;

constexpr std::size_t kWidest = 80;
constexpr std::size_t kIndent = 2;

/// What a term matches and where it goes, in a few words.
std::string summaryOf(const TermEvidence& term) {
    if (term.state == nullptr) return "not in the state";
    std::string summary =
        matchText(Vex::enumText(term.classifier->state->state().type),
                  dscpValues(term.state, Type::IPV4), dscpValues(term.state, Type::IPV6));
    if (summary.empty()) summary = "no dscp";
    const String& group = targetGroup(term.state);
    return summary + (group.empty() ? ", no target group" : ", target group " + visibleName(group));
}

/// Writes an explanation line by line.
class ExplanationWriter {
public:
    explicit ExplanationWriter(const Terminal& terminal)
        : width_(terminal.isThere() ? std::min(terminal.columns, kWidest) : kWidest),
          hasColour_(terminal.hasColour) {}

    std::string write(const Explanation& explanation);

private:
    void head(const std::string& text) { line(text, kBold, text.size()); }
    /// A sentence, folded; of its first line the first `painted` bytes are in that colour.
    void line(const std::string& text, std::string_view colour = {}, std::size_t painted = 0);
    void nothingFound(const Explanation& explanation);
    void classifierHead(const Explanation& explanation);
    void finding(const Finding& finding, bool hasAdvice);
    void termHead(const TermEvidence& term);
    void wholeTerm(const TermExplanation& explanation);
    void shortTerm(const TermExplanation& explanation);

    std::string text_;
    std::size_t width_;
    std::size_t margin_ = 0;  ///< spaces before each line
    bool hasColour_;
};

std::string ExplanationWriter::write(const Explanation& explanation) {
    classifierHead(explanation);
    for (const Finding* row : explanation.findings)
        finding(*row, true);
    if (explanation.askedTerm && explanation.terms.empty() && explanation.evidence->isKnown())
        line("Nobody knows a term " + visibleName(*explanation.askedTerm) + " of this classifier.");
    for (const TermExplanation& term : explanation.terms)
        explanation.askedTerm ? wholeTerm(term) : shortTerm(term);
    nothingFound(explanation);
    text_.pop_back();  // the last line end
    return std::move(text_);
}

void ExplanationWriter::nothingFound(const Explanation& explanation) {
    const auto& terms = explanation.terms;
    const bool isFound = !explanation.findings.empty() ||
                         std::any_of(terms.begin(), terms.end(),
                                     [](const auto& term) { return !term.findings.empty(); });
    if (explanation.isKnown() && !isFound) line("Nothing differs from what is configured.");
}

void ExplanationWriter::line(const std::string& text, std::string_view colour,
                             std::size_t painted) {
    std::vector<std::string> lines =
        folded(text, width_ - std::min(margin_, width_ / 2), kIndent, " ");
    painted = std::min(painted, lines[0].size());
    if (hasColour_ && painted != 0) lines[0].insert(painted, kPlain).insert(0, colour);
    for (std::string& each : lines) {
        each.erase(each.find_last_not_of(' ') + 1);
        text_.append(margin_, ' ').append(each) += '\n';
    }
}

void ExplanationWriter::classifierHead(const Explanation& explanation) {
    const ClassifierEvidence& classifier = *explanation.evidence;
    const std::string name = "classifier " + visibleName(classifier.name);
    if (!classifier.isKnown()) return line("Nobody knows a " + name + ".");
    const bool isInState = classifier.state != nullptr;
    head(name +
         (isInState ? ", " + Vex::enumText(classifier.state->state().type) : ", not in the state"));
}

void ExplanationWriter::finding(const Finding& finding, bool hasAdvice) {
    std::string text(finding.code);
    text.append(": ").append(finding.sentence);
    if (hasAdvice) text.append(" ").append(finding.advice);
    line(text, kBoldMagenta, finding.code.size() + 1);
}

void ExplanationWriter::termHead(const TermEvidence& term) {
    const std::string name = "term " + visibleName(term.id) + ":";
    line(name + " " + summaryOf(term), kBold, name.size());
}

void ExplanationWriter::shortTerm(const TermExplanation& explanation) {
    const TermEvidence& term = explanation.evidence;
    termHead(term);
    margin_ = kIndent;
    for (const Finding* row : explanation.findings)
        finding(*row, false);
    margin_ = 0;
}

void ExplanationWriter::wholeTerm(const TermExplanation& explanation) {
    const TermEvidence& term = explanation.evidence;
    termHead(term);
    text_ += '\n';
    for (const std::string& source : sourcesOf(term))
        line(source);
    if (!explanation.findings.empty()) text_ += '\n';
    for (const Finding* row : explanation.findings)
        finding(*row, true);
}

}  // namespace

std::string explanationText(const Explanation& explanation, const Terminal& terminal) {
    return ExplanationWriter(terminal).write(explanation);
}

}  // namespace QosAgent
