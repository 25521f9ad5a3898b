#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <variant>

#include "agent/json/Json.h"

namespace QosAgent {

/// The limits of accepted inputs. The reader refuses an input that exceeds one.
struct Limits {
    std::size_t documentBytes = std::size_t{256} << 20;  ///< at most 4 GiB - 1 is used
    std::size_t lineBytes = std::size_t{256} << 20;      ///< a line of a change stream
    std::size_t depth = 64;                              ///< levels of nested arrays and objects
    std::size_t textBytes = std::size_t{64} << 10;       ///< a key or string, decoded
};

/// The reason why a text is refused. `offset` is the beginning of the wrong key or value, the byte
/// that causes a syntax error, or the size of a text that ends too early. `message` is one short
/// line.
struct Fault {
    std::size_t offset;
    std::string message;

    bool operator==(const Fault&) const = default;
};

using JsonResult = std::variant<Json, Fault>;

/// Parses a text, which must be one JSON value in UTF-8 without a byte order mark, within `limits`,
/// with different names in each object. Returns the tree, or the first fault.
JsonResult parseJson(std::string_view text, const Limits& limits = {});

/// Parses a line of a change stream, which may have at most `limits.lineBytes`.
JsonResult parseJsonLine(std::string_view line, const Limits& limits = {});

}  // namespace QosAgent
