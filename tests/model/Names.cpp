#include "tests/model/Names.h"

#include <optional>
#include <vector>

#include "tests/model/Reach.h"

namespace Model {
namespace {

constexpr std::string_view kPrefix = "openconfig:";

/// Nothing when a `%` begins none of the two escapes.
std::optional<std::string> decoded(std::string_view part) {
    std::string out;
    while (!part.empty()) {
        if (part.starts_with("%25"))
            out += '%';
        else if (part.starts_with("%3A"))
            out += ':';
        else if (part[0] == '%')
            return {};
        else
            out += part[0];
        part.remove_prefix(part[0] == '%' ? 3 : 1);
    }
    return out;
}

std::string encoded(std::string_view text) {
    std::string out;
    for (const char c : text)
        out += c == '%' ? "%25" : c == ':' ? "%3A" : std::string(1, c);
    return out;
}

/// The two parts of a generated name; nothing of any other.
std::optional<std::pair<std::string, std::string>> partsOf(std::string_view name) {
    if (!name.starts_with(kPrefix)) return {};
    name.remove_prefix(kPrefix.size());
    const std::size_t colon = name.find(':');
    if (colon == std::string_view::npos || name.find(':', colon + 1) != std::string_view::npos) {
        rule<"names: another number of separators">();
        return {};
    }
    const auto first = decoded(name.substr(0, colon));
    const auto second = decoded(name.substr(colon + 1));
    if (!first || !second) {
        rule<"names: no escape">();
        return {};
    }
    return std::pair(*first, *second);
}

}  // namespace

TermName termNamed(std::string_view object) {
    const auto parts = partsOf(object);
    if (!parts) return {};
    if (parts->first.empty() || parts->second.empty()) {
        rule<"names: an empty part of a term">();
        return {};
    }
    return {parts->first, parts->second};
}

ClassifierPair classifiersOfPolicyMap(std::string_view policyMap) {
    const auto parts = partsOf(policyMap);
    return parts ? ClassifierPair{parts->first, parts->second} : ClassifierPair{};
}

std::string classifierOfClassMap(std::string_view classMap) {
    const bool isNone = classMap == "class-default" || classMap.starts_with(kPrefix);
    return isNone ? "" : std::string(classMap);
}

std::string madeOf(std::string_view first, std::string_view second) {
    return std::string(kPrefix) + encoded(first) + ':' + encoded(second);
}

}  // namespace Model
