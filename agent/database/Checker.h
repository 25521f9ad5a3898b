#pragma once

#include <optional>

#include "agent/database/Form.h"
#include "agent/database/Interner.h"
#include "agent/json/Faults.h"

namespace QosAgent {

/// Checks values against the type records: names, types, ranges, keys, and members that repeat a
/// key. Does not read the database. A value without a fault can be applied as a whole.
class Checker {
public:
    explicit Checker(Interner& interner) : interner_(interner) {}

    /// Returns the first fault in the value, if any. `keys` are the keys that the value may repeat.
    std::optional<Fault> check(const Form& form, const Keys& keys, const JsonValue& value);
    /// Adds the faults in the value, in the order of the text, until `faults` is full.
    void checkAll(const Form& form, const Keys& keys, const JsonValue& value, Faults& faults);

private:
    void checkNamed(const Form& form, const Keys& keys, const JsonValue& value, Faults& faults);
    void checkKeyed(const Form& form, const Keys& keys, const JsonValue& value, Faults& faults);
    void checkList(const Vex::Type& type, const JsonValue& value, Faults& faults);
    void checkScalar(const Form& form, const Keys& keys, const JsonValue& value, Faults& faults);

    Interner& interner_;
};

}  // namespace QosAgent
