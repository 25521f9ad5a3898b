#pragma once

#include <variant>
#include <vector>

#include "agent/openconfig/OpenConfigReader.h"
#include "agent/openconfig/OpenConfigTranslator.h"

namespace QosAgent {

/// The OpenConfig configuration that a database has, none at first.
class Configuration {
public:
    /// The database outlives the configuration.
    explicit Configuration(Database& database, Strictness strictness = Strictness::warns);

    /// Makes the configuration what the document says, by the differences. Returns what of the
    /// document was passed over, or why it is refused; nothing has changed then.
    std::variant<std::vector<Warning>, Fault> apply(const JsonValue& document);

private:
    Interner& interner_;
    Strictness strictness_;
    OpenConfigTranslator translator_;
};

}  // namespace QosAgent
