// Raises every kind of event on a device of a given size, each one in a function of its own, and
// prints the allocations of each event. scripts/instructions runs it under callgrind.
//   qos_instructions CLASSIFIERS

#include <array>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <utility>

#include "bench/QosOpenConfig/Device.h"
#include "bench/agent/RuleDocument.h"
#include "platform/OvSlab/Slab.h"

namespace {

std::size_t fromHeap = 0;
std::size_t fromSlab = 0;

void* heapAllocation(std::size_t size) {
    ++fromHeap;
    if (void* memory = std::malloc(size)) return memory;
    throw std::bad_alloc();
}

}  // namespace

void* operator new(std::size_t size) {
    return heapAllocation(size);
}
void* operator new[](std::size_t size) {
    return heapAllocation(size);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace QosBench {
namespace {

constexpr int kWarmUps = 4;
constexpr int kRounds = 8;

using Verb = void (*)(Device&);
void nothing(Device&) {}
template <auto kMember, auto... kArguments>
void verb(Device& device) {
    (device.*kMember)(kArguments...);
}

template <std::size_t kRules>
RuleDocument& ruleDocument() {
    static RuleDocument document(kRules);
    return document;
}
template <std::size_t kRules>
void loadRules(Device&) {
    ruleDocument<kRules>().load();
}
template <std::size_t kRules>
void unloadRules(Device&) {
    ruleDocument<kRules>().unload();
}

/// A round is `before`, the measured event and `after`.
struct Event {
    const char* name;
    Verb run;
    Verb prepare = nothing;
    Verb before = nothing;
    Verb after = nothing;
};
constexpr Verb kAddRule = verb<&Device::addRule>;
constexpr Verb kRemoveRule = verb<&Device::removeRule>;
constexpr Verb kAddClassMap = verb<&Device::addClassMap>;
constexpr Verb kRemoveClassMap = verb<&Device::removeClassMap>;
constexpr std::array kEvents{
    Event{"version raised, no class changed", verb<&Device::changePolicyMap, 0>},
    Event{"version raised, 1 class changed", verb<&Device::changePolicyMap, 1>},
    Event{"version raised, 8 classes changed", verb<&Device::changePolicyMap, 8>},
    Event{"spare forwarding group changed", verb<&Device::changeSpareForwardingGroup>},
    Event{"used forwarding group changed", verb<&Device::changeUsedForwardingGroup>},
    Event{"rule added to a list of 10", kAddRule, verb<&Device::giveRules, 10>, nothing,
          kRemoveRule},
    Event{"rule added to a list of 100", kAddRule, verb<&Device::giveRules, 100>, nothing,
          kRemoveRule},
    Event{"rule added to a list of 1000", kAddRule, verb<&Device::giveRules, 1000>, nothing,
          kRemoveRule},
    Event{"document of 10 rules loaded", loadRules<10>, nothing, nothing, unloadRules<10>},
    Event{"document of 100 rules loaded", loadRules<100>, nothing, nothing, unloadRules<100>},
    Event{"document of 1000 rules loaded", loadRules<1000>, nothing, nothing, unloadRules<1000>},
    Event{"class map published again", verb<&Device::publishClassMap>},
    Event{"class map removed", kRemoveClassMap, nothing, nothing, kAddClassMap},
    Event{"class map added", kAddClassMap, nothing, kRemoveClassMap, nothing},
};

/// What callgrind collects, by the index of the event.
template <std::size_t kIndex>
[[gnu::noinline]] void event(Device& device) {
    kEvents[kIndex].run(device);
}

template <std::size_t kIndex>
void measure(Device& device) {
    constexpr const Event& kEvent = kEvents[kIndex];
    kEvent.prepare(device);
    for (int round = 0; round != kWarmUps; ++round) {
        kEvent.before(device);
        kEvent.run(device);
        kEvent.after(device);
    }
    std::size_t heap = 0;
    std::size_t slab = 0;
    for (int round = 0; round != kRounds; ++round) {
        kEvent.before(device);
        fromHeap = fromSlab = 0;
        event<kIndex>(device);
        heap += fromHeap;
        slab += fromSlab;
        kEvent.after(device);
    }
    std::printf("%zu\t%s\t%d\t%zu\t%zu\n", kIndex, kEvent.name, kRounds, heap, slab);
}

template <std::size_t... kIndex>
void measureAll(Device& device, std::index_sequence<kIndex...>) {
    (measure<kIndex>(device), ...);
}

}  // namespace
}  // namespace QosBench

int main(int argc, char** argv) {
    const unsigned long classifiers = argc == 2 ? std::strtoul(argv[1], nullptr, 10) : 0;
    if (classifiers == 0) {
        std::fputs("usage: qos_instructions CLASSIFIERS\n", stderr);
        return 2;
    }
    QosBench::Device device(classifiers);
    OvSlab::allocationHookIs([](std::size_t) { ++fromSlab; });
    QosBench::measureAll(device, std::make_index_sequence<QosBench::kEvents.size()>());
    return 0;
}
