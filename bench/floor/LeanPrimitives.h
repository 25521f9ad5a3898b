#pragma once

#include "bench/floor/ChainMap.h"
#include "bench/platform/Primitives.h"

namespace QosBench {

/// The floor beside `Primitives`: functions in a vector, a chained map, a plain count, a flag.
class LeanPrimitives {
public:
    explicit LeanPrimitives(std::size_t members);

    std::size_t members() const noexcept { return ringers_.size(); }

    void call();
    void callHandler();
    void publishToOne();
    void publishToMany();
    void findByText();
    /// Equal names are the same here.
    void findByEqualText() { findByText(); }
    void takeReference();
    void traceWhileOff();
    void walk();

private:
    struct Subscriber {
        void (*handle)(LeanPrimitives& owner, Name name);
        LeanPrimitives* owner;
    };
    [[gnu::noinline]] static void handleOther(LeanPrimitives& owner, Name name);
    [[gnu::noinline]] static void handleLast(LeanPrimitives& owner, Name name);
    void publish(const std::vector<Subscriber>& subscribers) const;
    [[gnu::cold, gnu::noinline]] void writeTrace() const;

    Names names_;
    ChainMap<Name, std::uint32_t> ringers_;
    std::vector<Subscriber> few_;
    std::vector<Subscriber> many_;
    Name name_;
    std::uint32_t* found_ = nullptr;
    std::uint32_t sum_ = 0;
    std::uint32_t references_ = 1;
    std::uint8_t traceLevels_ = 0;
};

}  // namespace QosBench
