#pragma once

#include <string_view>

namespace QosAgent::Http {

/// Whether a `Host` names this machine: `localhost`, `127.0.0.1` or `[::1]`, with or without a
/// port. A door on loopback serves no other: a page from elsewhere whose name was made to lead here
/// would read what it serves.
bool isThisMachine(std::string_view host);

}  // namespace QosAgent::Http
