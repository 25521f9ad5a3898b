#pragma once

inline constexpr unsigned kMostMutants = 1U << 18;

extern "C" {
/// The mutant that this process has; 0 for none.
[[gnu::visibility("default")]] extern unsigned qosChosenMutant;
/// A mark for each mutant that was asked for.
[[gnu::visibility("default")]] extern unsigned char* qosAskedMutants;
}

/// True where the process has the mutant. No constant expression: a mutant that would be settled by
/// the compiler does not compile, and is left out.
inline bool qosMutant(unsigned number) noexcept {
    qosAskedMutants[number] = 1;
    return number == qosChosenMutant;
}
