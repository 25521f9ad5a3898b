#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <variant>

#include "agent/output/Diagnostics.h"

namespace QosAgent {

/// The folder in which toggle files lie, each an object from toggle names to true or false.
class ToggleFolder {
public:
    using Toggles = std::map<std::string, bool, std::less<>>;

    /// An empty name: there is no folder.
    explicit ToggleFolder(std::string folder) : folder_(std::move(folder)) {}

    /// What a file says, none if it is missing; or why it is refused.
    std::variant<Toggles, Diagnostic> read(std::string_view file) const;
    /// The state of one toggle; `fallback` where the file says nothing of it, or is refused. The
    /// first time that the file says false, warns of it: nothing else tells why nothing happens.
    bool state(std::string_view toggle, std::string_view file, bool fallback);

private:
    std::string nameOf(std::string_view file) const { return folder_ + '/' + std::string(file); }

    std::string folder_;
    std::set<std::string, std::less<>> warnedOf_;  ///< toggles
};

}  // namespace QosAgent
