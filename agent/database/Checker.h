#pragma once

#include <optional>

#include "agent/database/Form.h"
#include "agent/database/Interner.h"
#include "agent/json/JsonReader.h"

namespace QosAgent {

/// Checks values against the type records, whatever the database holds: names, types, ranges,
/// keys, and agreement with the keys that are repeated. What it passes can be applied as a whole.
class Checker {
public:
    explicit Checker(Interner& interner) : interner_(interner) {}

    /// The first fault in the value, if any. `keys` are those that the thing may repeat.
    std::optional<Fault> check(const Form& form, const Keys& keys, const JsonValue& value);

private:
    std::optional<Fault> checkNamed(const Form& form, const Keys& keys, const JsonValue& value);
    std::optional<Fault> checkKeyed(const Form& form, const Keys& keys, const JsonValue& value);
    std::optional<Fault> checkList(const Vex::Type& type, const JsonValue& value);
    std::optional<Fault> checkScalar(const Form& form, const Keys& keys, const JsonValue& value);

    Interner& interner_;
};

}  // namespace QosAgent
