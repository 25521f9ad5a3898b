#pragma once

#include <optional>
#include <string_view>

#include "agent/database/Database.h"
#include "agent/json/JsonReader.h"

namespace QosAgent {

/// A document with this member at the top is an OpenConfig configuration.
inline constexpr std::string_view kOpenConfigMember = "openconfig-qos:qos";

/// Makes the OpenConfig configuration what the document says, by the differences. Returns why the
/// document is refused, if it is; nothing is applied then.
std::optional<Fault> applyConfiguration(Database& database, const JsonValue& document);

}  // namespace QosAgent
