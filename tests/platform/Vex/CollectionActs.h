#pragma once

#include <cstdint>

#include "tests/support/Reentrancy.h"

namespace Vex {

using TestSupport::kNewcomers;
using TestSupport::Script;
using TestSupport::Verb;

/// Newcomers lie between the others, in ascending order.
inline std::uint32_t keyOf(int member) {
    return static_cast<std::uint32_t>(member >= kNewcomers ? 2 * (member - kNewcomers)
                                                           : 2 * member + 1);
}
inline int memberAt(std::uint32_t key) {
    return static_cast<int>(key) / 2 + (key % 2 == 0 ? kNewcomers : 0);
}
inline int newcomerAfter(int target) {
    return kNewcomers + target + 1;
}

/// What is done to a collection, in terms of what `Derived` has: `contains`, `enter`, `remove`,
/// `assign`, `clear`, `drop` and `tell`.
template <class Derived>
class Acts {
public:
    static constexpr bool kDropsAct = true;

    void perform(Verb verb, int target) {
        if (!self().isThere()) return;
        switch (verb) {
            case Verb::remove:
                return self().remove(target);
            case Verb::enterAgain:
                self().remove(target);
                return enterNew(target);
            case Verb::assign:
                return self().assign(target);
            case Verb::enterAfter:
                return enterNew(newcomerAfter(target));
            case Verb::clear:
                ++clearings_;
                self().clear();
                --clearings_;
                return;
            case Verb::again:
                return self().tell();
            default:
                if (clearings_ == 0) self().drop();  // who clears it keeps it alive
        }
    }

private:
    Derived& self() { return static_cast<Derived&>(*this); }
    /// What goes may have entered it already, or may have dropped everything.
    void enterNew(int member) {
        if (self().isThere() && !self().contains(member)) self().enter(member);
    }

    int clearings_ = 0;
};

}  // namespace Vex
