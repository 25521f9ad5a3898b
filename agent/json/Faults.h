#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "agent/json/JsonReader.h"

namespace QosAgent {

/// Collects the faults that a check finds in one text.
class Faults {
public:
    /// Keeps the first `most` faults, at least one; later ones are dropped.
    explicit Faults(std::size_t most = 1) : most_(most) {}

    void add(std::size_t offset, std::string message) {
        if (!isFull()) found_.push_back({offset, std::move(message)});
    }
    bool empty() const { return found_.empty(); }
    /// Returns true if no further fault is kept, so that the check may stop.
    bool isFull() const { return found_.size() == most_; }
    /// In the order in which they were found.
    const std::vector<Fault>& found() const { return found_; }

private:
    std::size_t most_;
    std::vector<Fault> found_;
};

}  // namespace QosAgent
