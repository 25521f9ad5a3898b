#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "tests/model/Story.h"
#include "tests/model/Wrong.h"

namespace Model {

/// What was played so far.
struct Tally {
    std::uint64_t lines = 0;
    std::uint64_t stories = 0;
    std::uint64_t restarts = 0;
    std::uint64_t teardowns = 0;
    /// Between what a plug-in left behind and what one made of it that was started anew, by the
    /// rule that accounts for them.
    std::map<std::string, std::uint64_t> differences{};
};

/// Where agent and model differ.
struct Failure {
    std::string kind;   ///< in one word
    std::string where;  ///< after which line
    std::string what;
};

/// Plays a story to the agent and to the model; nothing if they agree from beginning to end.
std::optional<Failure> play(const Story& story, const std::string& plugin, Wrong wrong,
                            Tally& tally);

/// The story with its plug-in torn down after so many lines.
Story prefix(const Story& story, std::size_t lines);

}  // namespace Model
