#pragma once

#include <valgrind/callgrind.h>

#include <cstddef>
#include <string>
#include <string_view>

#include "bench/Event.h"
#include "bench/count/Allocations.h"

namespace QosBench {

/// Counts allocations, and instructions if it runs under callgrind. Of each event it tells twice:
/// callgrind dumps the instructions of all runs under the name `SIDE|EVENT`, and the standard
/// output gets a line, its parts separated by tabs: `count`, side, event, base, runs, share,
/// allocations from the heap and from the slab in all runs, and a number that is the same when the
/// subject, if it has a state, went through the same states.
class Counter {
public:
    /// `side` says whose events are counted: `ours` or `floor`. Counts `nothing` at once.
    explicit Counter(std::string_view side);

    template <class Subject>
    void count(Subject& subject, const Event<Subject>& event, int warmUps, int runs) {
        std::string states;
        event.prepare(subject);
        for (int round = -warmUps; round != runs; ++round) {
            if (round == 0) startRuns();
            event.before(subject);
            counted(event.run, subject);
            if constexpr (requires { subject.stateText(); }) states += subject.stateText();
            event.after(subject);
        }
        report({event.name, event.base, runs, event.share(subject), states});
    }
    /// The instructions of the event that is running count no more.
    static void stop() noexcept {
        if (isRunning_) toggle();
    }

private:
    struct Report {
        std::string_view event;
        std::string_view base;
        int runs;
        std::size_t share;
        const std::string& states;
    };

    static void toggle() noexcept {
        isRunning_ = !isRunning_;
        CALLGRIND_TOGGLE_COLLECT;
    }
    /// In a function of its own, so that what counting costs is always the same.
    template <class Subject>
    [[gnu::noinline]] void counted(typename Event<Subject>::Verb run, Subject& subject) {
        const Allocations before = allocationsSoFar();
        toggle();
        run(subject);
        stop();
        allocations_ += allocationsSoFar() - before;
    }
    /// Callgrind is slow where it looks: not while the subject is made, nor at warm-ups.
    void startRuns();
    void report(const Report& report) const;

    static inline bool isRunning_ = false;
    std::string_view side_;
    Allocations allocations_;
};

}  // namespace QosBench
