#include "agent/json/TextPlace.h"

#include <algorithm>

namespace QosAgent {

TextPlace placeOf(std::string_view text, std::size_t offset) {
    const std::string_view before = text.substr(0, offset);
    const auto lineEnds = std::count(before.begin(), before.end(), '\n');
    const std::size_t lineStart = before.rfind('\n') + 1;  // npos + 1 is 0: the first line
    return {static_cast<std::size_t>(lineEnds) + 1, before.size() - lineStart + 1};
}

}  // namespace QosAgent
