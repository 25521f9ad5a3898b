#pragma once

#include <cstdint>
#include <set>
#include <unordered_map>

namespace QosAgent {

/// Counts who uses which number, and knows the least number that nobody uses. Each call costs
/// O(log n).
class NumberPool {
public:
    /// Adds a user of the number.
    void take(std::uint32_t number) {
        if (users_[number]++ != 0) return;
        gaps_.erase(number);
        while (users_.contains(end_))
            ++end_;
    }
    /// Removes a user of the number. Precondition: it has one.
    void release(std::uint32_t number) {
        const auto at = users_.find(number);
        if (--at->second != 0) return;
        users_.erase(at);
        if (number < end_) gaps_.insert(number);
    }
    std::uint32_t leastFree() const { return gaps_.empty() ? end_ : *gaps_.begin(); }

private:
    std::unordered_map<std::uint32_t, std::size_t> users_;
    std::uint32_t end_ = 0;         ///< all numbers below are in use, but for the gaps
    std::set<std::uint32_t> gaps_;  ///< free numbers below `end_`
};

}  // namespace QosAgent
