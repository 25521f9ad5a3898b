#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <variant>

#include "agent/output/Diagnostics.h"

namespace QosAgent {

/// The folder of the toggle files. Each file is an object from toggle names to true or false.
class ToggleFolder {
public:
    using Toggles = std::map<std::string, bool, std::less<>>;

    /// An empty name means no folder.
    explicit ToggleFolder(std::string folder) : folder_(std::move(folder)) {}

    /// Returns the toggles of a file, none if the file is missing; or a message if it is refused.
    std::variant<Toggles, Diagnostic> read(std::string_view file) const;
    /// Returns the state of a toggle; `fallback` if the file lacks it or is refused. Warns when a
    /// toggle is first read as false, because a feature that is off gives no other sign.
    bool state(std::string_view toggle, std::string_view file, bool fallback);

private:
    std::string nameOf(std::string_view file) const { return folder_ + '/' + std::string(file); }

    std::string folder_;
    std::set<std::string, std::less<>> warnedOf_;  ///< the toggles that were warned of
};

}  // namespace QosAgent
