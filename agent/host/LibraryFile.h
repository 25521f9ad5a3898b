#pragma once

#include <string>

namespace QosAgent {

/// Why a file must not be handed to the C library as a shared library, which would wait for ever or
/// end the process; empty if nothing is known against it. The C library itself refuses the rest.
std::string libraryFileFault(const std::string& path);

}  // namespace QosAgent
