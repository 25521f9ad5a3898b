#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "agent/output/Machines.h"

namespace QosAgent {

/// A value and its type.
struct TypedValue {
    const Vex::Type& type;
    const Vex::Value& value;
};

/// Receives a tree of machines piece by piece. `label` is the attribute's name; empty for members
/// of a collection.
class MachineSink {
public:
    virtual ~MachineSink() = default;
    virtual void beginMachine(std::string_view label, std::string_view type,
                              const std::optional<std::string>& key) = 0;
    virtual void endMachine() = 0;
    virtual void beginMembers(std::string_view label) = 0;
    virtual void endMembers() = 0;
    /// A member that is not a machine.
    virtual void member(const TypedValue& key, const TypedValue& value) = 0;
    virtual void input(std::string_view label, std::string_view type,
                       const std::optional<std::string>& name) = 0;
    virtual void nothing(std::string_view label) = 0;
    virtual void value(std::string_view label, const TypedValue& value) = 0;
};

void walkMachines(MachineSink& sink, const Database& database, MachineOwners owners);

}  // namespace QosAgent
