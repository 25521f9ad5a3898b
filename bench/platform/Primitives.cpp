#include "bench/platform/Primitives.h"

#include "platform/Vex/Derive.h"
#include "platform/Vex/Trace.h"

namespace QosBench {
namespace {

constinit Vex::TraceHandle traceHandle("QosBench", false);
constexpr Vex::TracePoint kTraceWhileOff{"bench", 1, "traceWhileOff",
                                         "void QosBench::Primitives::traceWhileOff()"};

}  // namespace

constinit const Vex::TypeRecord Bell::kTypeRecord = Vex::recordOf<Bell>();
template <bool kIsLast>
constinit const Vex::TypeRecord BellSm<kIsLast>::kTypeRecord = Vex::recordOf<BellSm<kIsLast>>();

Primitives::Primitives(std::size_t members) {
    for (std::uint32_t number = 0; number != members; ++number)
        few_->ringers().enter(Orin::String("ringer-" + std::to_string(number)), number);
    equalName_ = Orin::String("ringer-" + std::to_string(members / 2));
    for (const auto& member : few_->ringers())
        if (member.key == equalName_) name_ = member.key;
    toldAlone_ = LastSm::create(few_);
    while (toldBefore_.size() != kManySubscribers - 1)
        toldBefore_.push_back(OtherSm::create(many_));
    toldLast_ = LastSm::create(many_);
}

void Primitives::call() {}

void Primitives::callHandler() {
    toldAlone_->handleRinger(name_);
}

void Primitives::publishToOne() {
    few_->publishChange(Bell::kRinger.id, &name_);
}

void Primitives::publishToMany() {
    many_->publishChange(Bell::kRinger.id, &name_);
}

void Primitives::findByText() {
    found_ = few_->ringers().find(name_);
}

void Primitives::findByEqualText() {
    found_ = few_->ringers().find(equalName_);
}

void Primitives::takeReference() {
    const Orin::Ptr<Bell> taken(few_);
    asm volatile("" : : "r"(taken.get()) : "memory");
}

void Primitives::traceWhileOff() {
    Vex::trace(traceHandle, kTraceWhileOff, ", name = ", name_, ", sum = ", sum_);
}

void Primitives::walk() {
    for (const auto& member : few_->ringers())
        sum_ += member.value;
}

}  // namespace QosBench
