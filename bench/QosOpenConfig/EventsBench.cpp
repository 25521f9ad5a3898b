#include <benchmark/benchmark.h>

#include <memory>

#include "bench/QosOpenConfig/Device.h"

namespace QosBench {
namespace {

/// Devices are costly to make: neighbouring benches of one size share theirs.
Device& deviceOf(std::int64_t classifiers) {
    static std::unique_ptr<Device> device;
    const auto size = static_cast<std::size_t>(classifiers);
    if (!device || device->size() != size) device = std::make_unique<Device>(size);
    return *device;
}

/// Arguments: classifiers on the device, classes changed.
void versionRaised(benchmark::State& state) {
    Device& device = deviceOf(state.range(0));
    for (auto _ : state)
        device.changePolicyMap(static_cast<std::size_t>(state.range(1)));
}
BENCHMARK(versionRaised)->ArgsProduct({{100, 1000, 10000}, {0, 1, 8}});

void spareForwardingGroupChanged(benchmark::State& state) {
    Device& device = deviceOf(state.range(0));
    for (auto _ : state)
        device.changeSpareForwardingGroup();
}
BENCHMARK(spareForwardingGroupChanged)->Arg(100)->Arg(1000)->Arg(10000);

void usedForwardingGroupChanged(benchmark::State& state) {
    Device& device = deviceOf(state.range(0));
    for (auto _ : state)
        device.changeUsedForwardingGroup();
}
BENCHMARK(usedForwardingGroupChanged)->Arg(100)->Arg(1000)->Arg(10000);

/// Arguments: classifiers on the device, rules in the list.
void ruleAddedAndRemoved(benchmark::State& state) {
    Device& device = deviceOf(state.range(0));
    device.giveRules(static_cast<std::size_t>(state.range(1)));
    for (auto _ : state) {
        device.addRule();
        device.removeRule();
    }
}
BENCHMARK(ruleAddedAndRemoved)->ArgsProduct({{100, 10000}, {10, 100, 1000}});

void classMapPublished(benchmark::State& state) {
    Device& device = deviceOf(state.range(0));
    for (auto _ : state)
        device.publishClassMap();
}
BENCHMARK(classMapPublished)->Arg(100)->Arg(1000)->Arg(10000);

void classMapRemovedAndAdded(benchmark::State& state) {
    Device& device = deviceOf(state.range(0));
    for (auto _ : state) {
        device.removeClassMap();
        device.addClassMap();
    }
}
BENCHMARK(classMapRemovedAndAdded)->Arg(100)->Arg(1000)->Arg(10000);

/// The whole catch-up of a root machine that finds everything there.
void deviceStarted(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(Device(static_cast<std::size_t>(state.range(0))).size());
}
BENCHMARK(deviceStarted)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace QosBench
