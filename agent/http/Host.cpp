#include "agent/http/Host.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace QosAgent::Http {
namespace {

bool isPortOrNone(std::string_view text) {
    return text.empty() ||
           (text.front() == ':' && text.find_first_not_of("0123456789", 1) == text.npos);
}

bool startsWithName(std::string_view host, std::string_view name) {
    return host.size() >= name.size() &&
           std::equal(name.begin(), name.end(), host.begin(), [](char wanted, char found) {
               return wanted == std::tolower(static_cast<unsigned char>(found));
           });
}

}  // namespace

bool isThisMachine(std::string_view host) {
    constexpr std::array<std::string_view, 3> names{"localhost", "127.0.0.1", "[::1]"};
    return std::ranges::any_of(names, [host](std::string_view name) {
        return startsWithName(host, name) && isPortOrNone(host.substr(name.size()));
    });
}

}  // namespace QosAgent::Http
