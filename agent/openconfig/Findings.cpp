#include "agent/openconfig/Findings.h"

#include <algorithm>
#include <utility>

#include "agent/json/Excerpt.h"

namespace QosAgent {

void Findings::refuse(std::size_t offset, std::string message) {
    faults_.add(offset, std::move(message));
}

void Findings::refuseWarnings() {
    for (const Warning& warning : warnings())
        refuse(warning.offset, warning.message + " (refused under --strict)");
}

Findings::OfTerm::OfTerm(Findings& findings, std::string_view classifier, std::string_view term)
    : findings_(findings), classifier_(classifier), term_(term), number_(++findings.terms_) {
    findings.term_ = this;
}

Warning* Findings::passOver(std::size_t offset, const std::string& kind) {
    const auto [at, isFirst] = kinds_.try_emplace(kind, Kind{warnings_.size(), {}});
    if (term_ != nullptr) count(at->second);
    if (!isFirst) return nullptr;
    return &warnings_.emplace_back(Warning{offset, "passed over: " + kind});
}

void Findings::passOverState(std::size_t offset) {
    const OfTerm* term = std::exchange(term_, nullptr);
    passOver(offset, "state containers");
    term_ = term;
}

void Findings::count(Kind& kind) const {
    if (kind.terms == 0)
        kind.firstTerm =
            "term " + excerpt(term_->term_) + " of classifier " + excerpt(term_->classifier_);
    if (std::exchange(kind.lastTerm, term_->number_) != term_->number_) ++kind.terms;
}

std::vector<Warning> Findings::warnings() const {
    std::vector<Warning> sorted = warnings_;
    for (const auto& [name, kind] : kinds_) {
        if (kind.terms == 0) continue;
        sorted[kind.warning].message +=
            " (in " + std::to_string(kind.terms) + (kind.terms == 1 ? " term" : " terms") +
            ", published as if matching DSCP alone; first in " + kind.firstTerm + ')';
    }
    std::stable_sort(sorted.begin(), sorted.end(), [](const Warning& left, const Warning& right) {
        return left.offset < right.offset;
    });
    return sorted;
}

}  // namespace QosAgent
