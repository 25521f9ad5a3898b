#include "agent/output/MatchText.h"

#include "agent/output/Dscp.h"

namespace QosAgent {
namespace {

void appendFamily(std::string& text, std::string_view family,
                  std::span<const std::uint8_t> values) {
    if (values.empty()) return;
    if (!text.empty()) text += "; ";
    text.append(family).append(kDscpTitle).append(dscpText(values));
}

}  // namespace

std::string matchText(std::string_view classifierType, std::span<const std::uint8_t> ipv4,
                      std::span<const std::uint8_t> ipv6) {
    std::string text;
    appendFamily(text, classifierType == "IPV4" ? "" : "ipv4 ", ipv4);
    appendFamily(text, classifierType == "IPV6" ? "" : "ipv6 ", ipv6);
    return text;
}

}  // namespace QosAgent
