#pragma once

#include <span>

#include "agent/database/Form.h"
#include "agent/database/Patch.h"

/// Values as trees: how they begin, change and are taken apart. Knows no entities.
namespace QosAgent {

/// What is left out of something new: 0, false or empty; what repeats or copies the key is the key.
Vex::Value defaultValue(const Vex::Type& type, Vex::Role role, const Keys& keys);

/// The value that the patch makes of `current`, which is absent where there is none.
Vex::Value patched(const Vex::Type& type, Vex::Value current, const Patch& patch, const Keys& keys,
                   Interner& interner);

/// The part of the value that the steps lead to; null where it does not exist. An optional that is
/// unset does not exist.
Vex::Value* partOf(const Vex::Type& type, Vex::Value& value, std::span<const Step> steps);

/// Unsets the optional or removes the member that the steps, at least one, lead to. Nothing
/// happens when it does not exist.
void removePart(const Vex::Type& type, Vex::Value& value, std::span<const Step> steps);

}  // namespace QosAgent
