// Counts what the events of a group cost: instructions, when run under callgrind, and allocations.
// scripts/bench runs it and reads what it prints.
//   qos_count GROUP SIZE

#include <cstdio>
#include <cstdlib>

#include "bench/Groups.h"
#include "bench/count/Counter.h"
#include "bench/count/Memory.h"

namespace QosBench {
namespace {

bool count(std::string_view name, std::size_t size) {
    if (name == "memory" && size != 0) {
        countMemory(size);
        return true;
    }
    return size != 0 && visitGroupsNamed(name, [size](const auto& group) {
               const auto subject = group.make(size);
               Counter counter(group.side);
               for (const auto& event : group.events)
                   counter.count(*subject, event, group.warmUps, group.runs);
           });
}

}  // namespace
}  // namespace QosBench

int main(int argc, char** argv) {
    QosBench::atLastHandler = QosBench::Counter::stop;
    if (argc == 3 && QosBench::count(argv[1], std::strtoul(argv[2], nullptr, 10))) return 0;
    std::fputs("usage: qos_count GROUP SIZE\n", stderr);
    return 2;
}
