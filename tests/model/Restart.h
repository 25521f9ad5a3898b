#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tests/model/Inputs.h"
#include "tests/model/State.h"

namespace Model {

/// What a plug-in is started over.
enum class Start {
    overWhatWasLeft,  ///< what another published over the same inputs
    overNothing
};

inline constexpr std::string_view kUnexplained = "unexplained";

/// One thing that is not what it was before the start, and the rule that accounts for it.
struct Difference {
    std::string kind;
    std::string what;
};

/// All differences between what was published before a start and after it. `deleted`: what class
/// maps had deleted until then.
std::vector<Difference> differencesOf(const Published& before, const Published& after,
                                      const Inputs& inputs, const std::vector<std::string>& deleted,
                                      Start start);

}  // namespace Model
