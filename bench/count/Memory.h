#pragma once

#include <cstddef>

namespace QosBench {

/// Weighs a device of that many terms, eight to a classifier. Each line on the standard output is
/// `bytes`, side, what, and its bytes, separated by tabs; with all that the heap spends on it.
void countMemory(std::size_t terms);

}  // namespace QosBench
