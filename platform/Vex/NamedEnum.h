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

/// An enumeration with a function `enumNames(E)` that returns its names, ascending by value.
template <class E>
concept NamedEnum = std::is_enum_v<E> && requires(E value) {
    { enumNames(value) } -> std::convertible_to<std::span<const EnumName>>;
};

/// Returns the name of the value; empty if it has none.
constexpr std::string_view nameOf(std::span<const EnumName> names, std::uint64_t value) noexcept {
    const auto* at = std::find_if(names.data(), names.data() + names.size(),
                                  [value](const EnumName& n) { return n.value == value; });
    return at == names.data() + names.size() ? std::string_view() : at->name;
}

/// Returns the name of the value; its number if it has no name.
template <NamedEnum E>
std::string enumText(E value) {
    const auto number = static_cast<std::uint64_t>(value);
    const std::string_view name = nameOf(enumNames(value), number);
    return name.empty() ? std::to_string(number) : std::string(name);
}

}  // namespace Vex
