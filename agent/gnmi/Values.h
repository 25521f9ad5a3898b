#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "agent/gnmi/Refusal.h"
#include "agent/gnmi/Schema.h"

namespace QosAgent::Gnmi {

/// A leaf's value as the encoding PROTO tells it.
using Scalar = std::variant<std::string, std::uint64_t, std::int64_t, bool>;

/// The value of a leaf of which the RFC 7951 JSON is given. Numbers of 64 bits are strings there.
Scalar scalarOf(std::string_view json, const SchemaNode& leaf);
/// The same for a leaf-list.
std::vector<Scalar> scalarsOf(std::string_view json, const SchemaNode& leaf);
/// The reverse of `scalarOf`.
std::string toJson(const Scalar& scalar, const SchemaNode& leaf);

/// The same JSON on one line, without white space. Refused if it is no JSON, or is `null`.
OrRefusal<std::string> compactJson(std::string_view json);

}  // namespace QosAgent::Gnmi
