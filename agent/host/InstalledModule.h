#pragma once

#include <string>
#include <variant>

#include "agent/host/InstalledLibrary.h"

namespace QosAgent {

/// What a library that came with the program exports, through the one function that it has; or one
/// line that says why it cannot be had. The library and the program must agree on the version.
template <class Module>
std::variant<const Module*, std::string> moduleOf(const InstalledLibrary& library,
                                                  unsigned version) {
    const auto opened = openInstalled(library);
    if (const auto* fault = std::get_if<std::string>(&opened)) return *fault;
    const auto function = reinterpret_cast<const Module* (*)()>(std::get<void*>(opened));
    const Module* module = function();
    if (module->version != version)
        return std::string("belongs to another version of the program: ") + library.file;
    return module;
}

}  // namespace QosAgent
