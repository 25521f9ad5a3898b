#pragma once

#include <span>
#include <string_view>

#include "agent/host/InstalledLibrary.h"

/// The options that belong to libraries of their own. The program knows their names and checks that
/// they are complete; what they mean is the library's.
namespace QosAgent {

struct DoorOption {
    const char* name;   ///< without dashes
    const char* value;  ///< what the help calls its value; null: a flag
    const char* help;
};

/// A door, or a store, and its options. The first option asks for it; the others need that one.
struct DoorKind {
    const char* name;  ///< of the door, as its first option's
    std::span<const DoorOption> options;
};

std::span<const DoorKind> doorKinds();

/// The library that a door's first option asks for, by the option's name and value.
InstalledLibrary libraryFor(std::string_view option, std::string_view value);

}  // namespace QosAgent
