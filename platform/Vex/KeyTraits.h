#pragma once

#include <concepts>
#include <cstdint>
#include <string_view>
#include <type_traits>

#include "platform/Orin/String.h"

namespace Vex {

/// Spreads the bits of a number over a hash.
constexpr std::uint32_t mixed(std::uint64_t number) noexcept {
    const std::uint64_t product = (number + 1) * 0x9E3779B97F4A7C15;
    return static_cast<std::uint32_t>(product >> 32);
}

/// Returns the hash seed of a collection, computed from its name.
consteval std::uint32_t seedOf(std::string_view name) {
    std::uint32_t seed = 2166136261U;
    for (const char c : name)
        seed = (seed ^ static_cast<unsigned char>(c)) * 16777619U;
    return seed;
}

/// Returns the hash of a key. A key type must have a member `hash(seed)`, or be a text, a number or
/// an enumeration.
template <class K>
struct KeyTraits {
    static std::uint32_t hash(const K& key, std::uint32_t seed) noexcept {
        if constexpr (std::is_enum_v<K> || std::is_integral_v<K>)
            return mixed(static_cast<std::uint64_t>(key) ^ seed);
        else
            return key.hash(seed);
    }
};

template <>
struct KeyTraits<Orin::String> {
    static std::uint32_t hash(const Orin::String& key, std::uint32_t seed) noexcept {
        return key.hash() ^ seed;
    }
    static std::uint32_t hash(std::string_view key, std::uint32_t seed) noexcept {
        return Orin::hashOf(key) ^ seed;
    }
    static std::uint32_t hash(const char* key, std::uint32_t seed) noexcept {
        return hash(std::string_view(key), seed);
    }
};

}  // namespace Vex
