#pragma once

#include <string_view>

namespace QosAgent {

/// Returns true if `left` comes before `right` in natural order. Runs of digits are compared by
/// value, so that `term2` comes before `term10`; everything else by bytes. Names that differ only
/// in leading zeros are compared by bytes, so that only equal names are equivalent.
bool naturallyBelow(std::string_view left, std::string_view right);

}  // namespace QosAgent
