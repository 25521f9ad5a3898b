#pragma once

#include <map>
#include <utility>
#include <vector>

#include "platform/Vex/TypeRecord.h"

namespace TestSupport {

/// Values of any type that a record describes, for tests of what holds for all types. Equal calls
/// give equal values: an entity is made once for its type and number, and lives as long as this.
class Samples {
public:
    /// A value of the type; different ones, ascending where they are ordered, for `n` 0, 1 and 2.
    /// The first is absence, or null, where the type is optional.
    Vex::Value of(const Vex::Type& type, unsigned n);
    /// What the type's `construct` takes: a sample for each leading key or input.
    std::vector<Vex::Value> argumentsOf(const Vex::TypeRecord& type);

private:
    Vex::Value entity(const Vex::TypeRecord& type, unsigned n);
    Vex::Value record(const Vex::TypeRecord& type, unsigned n);

    std::map<std::pair<const Vex::TypeRecord*, unsigned>, Orin::Ptr<Vex::TypedNode>> entities_;
};

}  // namespace TestSupport
