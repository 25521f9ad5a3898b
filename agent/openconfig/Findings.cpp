#include "agent/openconfig/Findings.h"

#include <algorithm>
#include <utility>

namespace QosAgent {

void Findings::refuse(std::size_t offset, std::string message) {
    faults_.add(offset, std::move(message));
}

void Findings::refuseWarnings() {
    for (const Warning& warning : warnings())
        refuse(warning.offset, warning.message + " (refused under --strict)");
}

Warning* Findings::passOver(std::size_t offset, const std::string& kind) {
    if (!kinds_.insert(kind).second) return nullptr;
    return &warnings_.emplace_back(Warning{offset, "passed over: " + kind});
}

std::vector<Warning> Findings::warnings() const {
    std::vector<Warning> sorted = warnings_;
    std::stable_sort(sorted.begin(), sorted.end(), [](const Warning& left, const Warning& right) {
        return left.offset < right.offset;
    });
    return sorted;
}

}  // namespace QosAgent
