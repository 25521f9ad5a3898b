#include "bench/floor/LeanPrimitives.h"

#include <cstdio>
#include <cstdlib>

namespace QosBench {

LeanPrimitives::LeanPrimitives(std::size_t members) {
    for (std::uint32_t number = 0; number != members; ++number)
        ringers_[names_("ringer-" + std::to_string(number))] = number;
    name_ = names_("ringer-" + std::to_string(members / 2));
    few_.push_back({handleLast, this});
    many_.assign(kManySubscribers - 1, {handleOther, this});
    many_.push_back({handleLast, this});
}

void LeanPrimitives::handleOther(LeanPrimitives&, Name) {
    asm volatile("");
}

void LeanPrimitives::handleLast(LeanPrimitives&, Name) {
    atLastHandler();
}

void LeanPrimitives::publish(const std::vector<Subscriber>& subscribers) const {
    for (const Subscriber& subscriber : subscribers)
        subscriber.handle(*subscriber.owner, name_);
}

void LeanPrimitives::call() {}

void LeanPrimitives::callHandler() {
    handleLast(*this, name_);
}

void LeanPrimitives::publishToOne() {
    publish(few_);
}

void LeanPrimitives::publishToMany() {
    publish(many_);
}

void LeanPrimitives::findByText() {
    found_ = ringers_.find(name_);
}

void LeanPrimitives::takeReference() {
    ++references_;
    asm volatile("" : : : "memory");
    if (--references_ == 0) std::abort();
}

void LeanPrimitives::traceWhileOff() {
    if (traceLevels_ > Vex::kFunctionEntry) [[unlikely]]
        writeTrace();
}

void LeanPrimitives::writeTrace() const {
    std::printf("%s %u\n", name_->text.c_str(), sum_);
}

void LeanPrimitives::walk() {
    ringers_.each([this](Name, std::uint32_t number) { sum_ += number; });
}

}  // namespace QosBench
