// Times the events of a group; scripts/bench runs it and reads what it prints. Benches are called
// SIDE/EVENT; their counter `share` says how many things an event concerns. Those called `loop` and
// `clock` are part of the others: `clock` of those timed by hand, `loop` of the rest.
//   qos_time GROUP SIZE [--benchmark_OPTION...]

#include <benchmark/benchmark.h>
#include <time.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "bench/Groups.h"

namespace QosBench {
namespace {

/// What this thread had of a processor, whoever else wanted it.
double processorSeconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

template <class Subject>
bool isRunOnly(const Event<Subject>& event) {
    return event.before == nothing<Subject> && event.after == nothing<Subject>;
}

/// Only what `run` takes: where something else belongs to a round, each run is timed by itself.
template <class Subject>
void timeEvent(benchmark::State& state, Subject& subject, const Event<Subject>& event) {
    event.prepare(subject);
    state.counters["share"] = static_cast<double>(event.share(subject));
    if (isRunOnly(event)) {
        for (auto _ : state)
            event.run(subject);
        return;
    }
    for (auto _ : state) {
        event.before(subject);
        const double start = processorSeconds();
        event.run(subject);
        const double end = processorSeconds();
        event.after(subject);
        state.SetIterationTime(end - start);
    }
}

template <class Subject>
void registerEvent(const Group<Subject>& group, std::shared_ptr<Subject> subject,
                   const Event<Subject>& event) {
    const auto run = [subject = std::move(subject), &event](benchmark::State& state) {
        timeEvent(state, *subject, event);
    };
    const std::string name = std::string(group.side) + "/" + std::string(event.name);
    auto* const registered = benchmark::RegisterBenchmark(name.c_str(), run);
    if (!isRunOnly(event)) registered->UseManualTime();
    if (group.runs == 1) registered->Iterations(1);
}

/// What the loop costs, and what timing a run by itself costs.
template <class Subject>
constexpr Event<Subject> kLoop{.name = "loop", .run = nothing<Subject>};
template <class Subject>
constexpr Event<Subject> kClock{
    .name = "clock", .run = nothing<Subject>, .before = [](Subject&) {}};

bool timeGroup(std::string_view name, std::size_t size) {
    return size != 0 && visitGroupsNamed(name, [size]<class S>(const Group<S>& group) {
               const std::shared_ptr<S> subject = group.make(size);
               registerEvent(group, subject, kLoop<S>);
               registerEvent(group, subject, kClock<S>);
               for (const Event<S>& event : group.events)
                   registerEvent(group, subject, event);
           });
}

}  // namespace
}  // namespace QosBench

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (argc != 3 || !QosBench::timeGroup(argv[1], std::strtoul(argv[2], nullptr, 10))) {
        std::fputs("usage: qos_time GROUP SIZE [--benchmark_OPTION...]\n", stderr);
        return 2;
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
