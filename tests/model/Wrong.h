#pragma once

#include <string_view>

namespace Model {

/// A rule in which the model is deliberately wrong, to see that the comparison finds it.
enum class Wrong {
    nothing,
    typeOfLastWriter,
    readdedTermIsBare,
    conditionsKeepOtherFamily,
    noDscpMeansNoConditions,
    clearedActionIsRemoved,
    conditionsGoWithSubConfiguration,
    replacedSubConfigurationCleansUp,
    noSweep,
    sweepOfUnnamedClassifiers,
    duplicatesMerged,
    partialMaskCounts,
    greatestGroup,
    noStalePass,
    groupsRunStalePass,
    newGroupMapRecomputes,
    registryCountsOnce,
    pmapKeepsClassifiersWhenItDies,
    configurationIgnoresPolicyMaps,
    changedTypeIsSeenAtOnce,
    classMapLeavesItsTerm,
    removedMatchDeletes,
    policyMapsComeLast,
    teardownClearsActions,
    lineLeftOut,
    lineTwice,
    unescapedText,
    count
};

std::string_view nameOf(Wrong wrong);

}  // namespace Model
