#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

namespace Vex {

struct EnumName {
    std::uint64_t value;
    std::string_view name;
};

/// An enumeration that lists its names, ascending by value, in a function `enumNames(E)` beside it.
template <class E>
concept NamedEnum = std::is_enum_v<E> && requires(E value) {
    { enumNames(value) } -> std::convertible_to<std::span<const EnumName>>;
};

/// The name of the value; empty when it has none.
constexpr std::string_view nameOf(std::span<const EnumName> names, std::uint64_t value) noexcept {
    const auto* at = std::find_if(names.data(), names.data() + names.size(),
                                  [value](const EnumName& n) { return n.value == value; });
    return at == names.data() + names.size() ? std::string_view() : at->name;
}

/// The name of the value, or its number where it has no name.
template <NamedEnum E>
std::string enumText(E value) {
    const auto number = static_cast<std::uint64_t>(value);
    const std::string_view name = nameOf(enumNames(value), number);
    return name.empty() ? std::to_string(number) : std::string(name);
}

}  // namespace Vex
