#include "agent/json/TextPlace.h"

#include <algorithm>

namespace QosAgent {

TextPlace placeAfter(const TextPlace& place, std::string_view passed) {
    const auto lineEnds = static_cast<std::size_t>(std::count(passed.begin(), passed.end(), '\n'));
    if (lineEnds == 0) return {place.line, place.column + passed.size()};
    return {place.line + lineEnds, passed.size() - passed.rfind('\n')};
}

TextPlace placeOf(std::string_view text, std::size_t offset) {
    return placeAfter(kTextBegin, text.substr(0, offset));
}

}  // namespace QosAgent
