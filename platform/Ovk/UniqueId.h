#pragma once

#include <compare>
#include <cstdint>
#include <ostream>

namespace Ovk {

/// Identifies an object during its lifetime, whatever its name and place. Unsigned, 64 bits.
struct UniqueId {
    std::uint64_t value = 0;

    std::uint32_t hash(std::uint32_t seed) const noexcept {
        const std::uint64_t mixed = (value ^ seed) * 0x9E3779B97F4A7C15;
        return static_cast<std::uint32_t>(mixed >> 32);
    }
    friend auto operator<=>(const UniqueId&, const UniqueId&) = default;
    friend std::ostream& operator<<(std::ostream& out, UniqueId id) { return out << id.value; }
};

}  // namespace Ovk
