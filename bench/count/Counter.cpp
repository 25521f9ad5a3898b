#include "bench/count/Counter.h"

#include <cstdio>
#include <functional>
#include <string>

namespace QosBench {

Counter::Counter(std::string_view side) : side_(side) {
    int subject = 0;
    count(subject, {kNothing, nothing<int>}, 2, 2);
}

void Counter::startRuns() {
    CALLGRIND_START_INSTRUMENTATION;
    CALLGRIND_ZERO_STATS;
    allocations_ = {};
}

void Counter::report(const Report& report) const {
    const std::string side(side_);
    const std::string event(report.event);
    const std::string base(report.base);
    const std::string name = side + "|" + event;
    CALLGRIND_DUMP_STATS_AT(name.c_str());
    CALLGRIND_STOP_INSTRUMENTATION;
    std::printf("count\t%s\t%s\t%s\t%d\t%zu\t%zu\t%zu\t%zu\n", side.c_str(), event.c_str(),
                base.c_str(), report.runs, report.share, allocations_.heap, allocations_.slab,
                std::hash<std::string>()(report.states));
}

}  // namespace QosBench
