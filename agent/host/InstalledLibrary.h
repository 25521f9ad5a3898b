#pragma once

#include <string>
#include <variant>

namespace QosAgent {

/// A library that came with the program, in a package that may not be installed.
struct InstalledLibrary {
    const char* file = nullptr;     ///< its name, such as `libqos-agent-gnmi.so`
    const char* package = nullptr;  ///< the Debian package that holds it
    const char* symbol = nullptr;   ///< the function that it exports
};

/// The address of the library's function, or one line that says why there is none. The library
/// stays open until the process ends, as threads of its own may outlive everything else.
std::variant<void*, std::string> openInstalled(const InstalledLibrary& library);

}  // namespace QosAgent
