#pragma once

#include <string>
#include <variant>

namespace QosAgent {

/// A library of the program, in a package that may not be installed.
struct InstalledLibrary {
    const char* file = nullptr;     ///< file name, such as `libqos-agent-gnmi.so`
    const char* package = nullptr;  ///< the Debian package that contains it
    const char* symbol = nullptr;   ///< the function that it exports
};

/// Opens the library. Returns the address of its function, or a message if that fails. The library
/// stays open until the process ends, because its threads may outlive all other objects.
std::variant<void*, std::string> openInstalled(const InstalledLibrary& library);

}  // namespace QosAgent
