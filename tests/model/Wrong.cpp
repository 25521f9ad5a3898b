#include "tests/model/Wrong.h"

#include <iterator>

namespace Model {

std::string_view nameOf(Wrong wrong) {
    static constexpr std::string_view kNames[] = {
        "nothing",
        "typeOfLastWriter",
        "readdedTermIsBare",
        "conditionsKeepOtherFamily",
        "noDscpMeansNoConditions",
        "clearedActionIsRemoved",
        "conditionsGoWithSubConfiguration",
        "replacedSubConfigurationCleansUp",
        "noSweep",
        "sweepOfUnnamedClassifiers",
        "duplicatesMerged",
        "partialMaskCounts",
        "greatestGroup",
        "noStalePass",
        "groupsRunStalePass",
        "newGroupMapRecomputes",
        "registryCountsOnce",
        "pmapKeepsClassifiersWhenItDies",
        "configurationIgnoresPolicyMaps",
        "changedTypeIsSeenAtOnce",
        "classMapLeavesItsTerm",
        "removedMatchDeletes",
        "policyMapsComeLast",
        "teardownClearsActions",
        "lineLeftOut",
        "lineTwice",
        "unescapedText",
    };
    static_assert(std::size(kNames) == static_cast<std::size_t>(Wrong::count));
    return kNames[static_cast<int>(wrong)];
}

}  // namespace Model
