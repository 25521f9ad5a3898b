#include "agent/json/Suggestion.h"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <vector>

#include "agent/json/Excerpt.h"

namespace QosAgent {
namespace {

/// With this many differences it is another word.
constexpr std::size_t kMostSlips = 2;
constexpr std::size_t kLettersForASlip = 3;

char lowered(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

bool isSame(char left, char right) {
    return lowered(left) == lowered(right);
}

/// Returns the number of letters inserted, left out, replaced, or swapped with a neighbour.
std::size_t slipsBetween(std::string_view left, std::string_view right) {
    std::vector<std::size_t> beforeLast;
    std::vector<std::size_t> last(right.size() + 1);
    std::iota(last.begin(), last.end(), 0);
    for (std::size_t i = 1; i <= left.size(); ++i) {
        std::vector<std::size_t> slips(right.size() + 1, i);
        for (std::size_t j = 1; j <= right.size(); ++j) {
            const std::size_t replaced = isSame(left[i - 1], right[j - 1]) ? 0 : 1;
            slips[j] = std::min({last[j] + 1, slips[j - 1] + 1, last[j - 1] + replaced});
            const bool isSwapped = i > 1 && j > 1 && isSame(left[i - 1], right[j - 2]) &&
                                   isSame(left[i - 2], right[j - 1]);
            if (isSwapped) slips[j] = std::min(slips[j], beforeLast[j - 2] + 1);
        }
        beforeLast = std::move(last);
        last = std::move(slips);
    }
    return last.back();
}

std::size_t lengthDifference(std::string_view left, std::string_view right) {
    return std::max(left.size(), right.size()) - std::min(left.size(), right.size());
}

}  // namespace

std::string suggestion(std::string_view wrong, std::span<const std::string_view> known) {
    std::size_t most = std::min(wrong.size() / kLettersForASlip, kMostSlips);
    std::string_view nearest;
    for (const std::string_view name : known) {
        if (lengthDifference(wrong, name) > most) continue;
        const std::size_t slips = slipsBetween(wrong, name);
        if (slips > most || (slips == most && !nearest.empty())) continue;
        nearest = name;
        most = slips;
    }
    return nearest.empty() ? "" : ", did you mean " + excerpt(nearest) + "?";
}

}  // namespace QosAgent
