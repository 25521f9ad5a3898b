#pragma once

#include <string_view>

namespace QosAgent {

/// Returns whether `left` comes before `right` for people: runs of digits compare by value, so that
/// `term2` comes before `term10`; everything else compares by bytes. Names that are alike but for
/// leading zeros compare by bytes, so that only equal names are equivalent.
bool naturallyBelow(std::string_view left, std::string_view right);

}  // namespace QosAgent
