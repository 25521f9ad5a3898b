#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <variant>

#include "agent/json/Json.h"

namespace QosAgent {

/// The largest inputs that are accepted; one more of any is refused.
struct Limits {
    std::size_t documentBytes = std::size_t{256} << 20;  ///< at most 4 GiB - 1 has an effect
    std::size_t lineBytes = std::size_t{256} << 20;      ///< a line of a change stream
    std::size_t depth = 64;                              ///< arrays and objects in one another
    std::size_t textBytes = std::size_t{64} << 10;       ///< a key or string, decoded
};

/// Why a text was refused. `offset` is where the offending key or value begins, or the byte at
/// which the syntax breaks, or the size of a text that ends too early; never more than that size.
/// `message` is one short line.
struct Fault {
    std::size_t offset;
    std::string message;

    bool operator==(const Fault&) const = default;
};

using JsonResult = std::variant<Json, Fault>;

/// The tree of a text that is exactly one JSON value in UTF-8, without a byte order mark, within
/// `limits`, and without an object that has two members of one name; else the first fault in it.
JsonResult parseJson(std::string_view text, const Limits& limits = {});

/// The same for a line of a change stream, which `limits` confine to `lineBytes`.
JsonResult parseJsonLine(std::string_view line, const Limits& limits = {});

}  // namespace QosAgent
