#include <gtest/gtest.h>

#include <compare>

#include "platform/Vex/OrderedMap.h"

namespace Vex {
namespace {

/// A key that counts how often one takes the place of another.
struct Shifted {
    Shifted(std::uint32_t v) : value(v) {}
    Shifted(const Shifted& other) : value(other.value) { ++shifts; }
    Shifted& operator=(const Shifted& other) {
        value = other.value;
        ++shifts;
        return *this;
    }
    std::uint32_t hash(std::uint32_t) const noexcept { return value; }
    friend bool operator==(const Shifted&, const Shifted&) = default;
    friend auto operator<=>(const Shifted&, const Shifted&) = default;

    std::uint32_t value;
    static inline std::size_t shifts = 0;
};

/// How many keys were shifted for each one that was entered.
template <class KeyOf>
double shiftsFor(std::uint32_t count, KeyOf keyOf) {
    OrderedMap<Shifted, std::uint32_t> map;
    Shifted::shifts = 0;
    for (std::uint32_t number = 0; number < count; ++number)
        map.enter(keyOf(number), number);
    return static_cast<double>(Shifted::shifts) / count;
}

// One that is entered is copied about four times on its way, which counts as well.
TEST(OrderedMapKeysTest, areNotShiftedForAGreaterOne) {
    EXPECT_LT(shiftsFor(10'000, [](std::uint32_t number) { return number; }), 4.5);
}

TEST(OrderedMapKeysTest, areShiftedByRunsOf128AtMost) {
    EXPECT_LT(shiftsFor(10'000, [](std::uint32_t number) { return 10'000 - number; }), 128.0);
}

}  // namespace
}  // namespace Vex
