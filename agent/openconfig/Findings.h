#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "agent/json/Faults.h"

namespace QosAgent {

/// Something in a document that the agent does not carry, once for each kind, with its first place.
struct Warning {
    std::size_t offset;
    std::string message;

    bool operator==(const Warning&) const = default;
};

/// What reading a document brings to light besides what it says.
class Findings {
public:
    /// Keeps the first `mostFaults` faults.
    explicit Findings(std::size_t mostFaults = 1) : faults_(mostFaults) {}

    /// Adds a fault, which refuses the document.
    void refuse(std::size_t offset, std::string message);
    /// Makes each warning a fault, behind the others.
    void refuseWarnings();
    /// The warning if it is the first of its kind, to be added to; else null. Valid until the next.
    Warning* passOver(std::size_t offset, const std::string& kind);

    /// In the order in which they were found.
    const Faults& faults() const { return faults_; }
    /// In ascending order of place.
    std::vector<Warning> warnings() const;

private:
    Faults faults_;
    std::vector<Warning> warnings_;
    std::unordered_set<std::string> kinds_;
};

}  // namespace QosAgent
