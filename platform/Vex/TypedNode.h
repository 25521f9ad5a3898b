#pragma once

#include <cstdint>

#include "platform/Orin/Export.h"
#include "platform/Orin/Node.h"

namespace Vex {

struct TypeRecord;

/// The place of a type: the index of its module in the order of registration, and its index in the
/// module's table, both from 0.
struct FwkType {
    std::uint16_t module;
    std::uint16_t type;
    friend bool operator==(const FwkType&, const FwkType&) = default;
};

/// A node with a type record: every machine and every entity.
class PLATFORM_API TypedNode : public Orin::Node {
public:
    const TypeRecord& typeData() const override = 0;
};

}  // namespace Vex
