#include "agent/output/NaturalOrder.h"

#include <algorithm>
#include <compare>

namespace QosAgent {
namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// Removes the digits at the beginning of the text; returns them without leading zeros.
std::string_view takeNumber(std::string_view& text) {
    const auto* const end = std::find_if_not(text.begin(), text.end(), isDigit);
    std::string_view number(text.begin(), end);
    text.remove_prefix(number.size());
    number.remove_prefix(std::min(number.find_first_not_of('0'), number.size()));
    return number;
}

std::strong_ordering compareNumbers(std::string_view left, std::string_view right) {
    if (left.size() != right.size()) return left.size() <=> right.size();
    return left <=> right;
}

/// Compares and removes one byte, or a number if both texts begin with one.
std::strong_ordering takeAndCompare(std::string_view& left, std::string_view& right) {
    if (isDigit(left.front()) && isDigit(right.front())) {
        const std::string_view leftNumber = takeNumber(left);
        return compareNumbers(leftNumber, takeNumber(right));
    }
    const auto order =
        static_cast<unsigned char>(left.front()) <=> static_cast<unsigned char>(right.front());
    left.remove_prefix(1);
    right.remove_prefix(1);
    return order;
}

}  // namespace

bool naturallyBelow(std::string_view left, std::string_view right) {
    std::string_view leftRest = left;
    std::string_view rightRest = right;
    while (!leftRest.empty() && !rightRest.empty()) {
        const std::strong_ordering order = takeAndCompare(leftRest, rightRest);
        if (std::is_neq(order)) return std::is_lt(order);
    }
    if (leftRest.empty() != rightRest.empty()) return leftRest.empty();
    return left < right;
}

}  // namespace QosAgent
