#pragma once

#include <cstddef>
#include <string_view>

namespace QosBench {

inline constexpr std::string_view kNothing = "nothing";

template <class Subject>
void nothing(Subject&) {}
template <class Subject>
std::size_t one(const Subject&) {
    return 1;
}
/// A member function, with arguments, as a plain function.
template <class Subject, auto kMember, auto... kArguments>
void verb(Subject& subject) {
    (subject.*kMember)(kArguments...);
}

/// Something that happens to a subject, over and over, and is counted and timed: only `run` is. The
/// same events happen to the system and to the floor beside it.
template <class Subject>
struct Event {
    using Verb = void (*)(Subject&);

    std::string_view name;
    Verb run;
    Verb prepare = nothing<Subject>;  ///< once, before all rounds
    Verb before = nothing<Subject>;   ///< in each round
    Verb after = nothing<Subject>;
    /// How many things an event concerns: its figure is for one of them.
    std::size_t (*share)(const Subject&) = one<Subject>;
    /// The event of the same subject whose cost is no part of this one's.
    std::string_view base = kNothing;
};

}  // namespace QosBench
