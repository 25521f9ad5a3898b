#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "agent/json/JsonReader.h"

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
    /// The first fault refuses the document; what comes after it does not count.
    void refuse(std::size_t offset, std::string message);
    /// The warning if it is the first of its kind, to be added to; else null. Valid until the next.
    Warning* passOver(std::size_t offset, const std::string& kind);

    const std::optional<Fault>& fault() const { return fault_; }
    /// In ascending order of place.
    std::vector<Warning> warnings() const;

private:
    std::optional<Fault> fault_;
    std::vector<Warning> warnings_;
    std::unordered_set<std::string> kinds_;
};

}  // namespace QosAgent
