#pragma once

#include "platform/Orin/Export.h"

namespace Orin {

/// Says whether more than one thread of the process touches counted objects.
///
/// An agent starts with one thread and plain counters. Before it starts a second thread that
/// holds a `Ptr` or a `String`, it sets the flag; from then on counters change atomically.
/// Setting it back is allowed only when one thread is left.
class ThreadControl {
public:
    static bool severalThreadsActive() noexcept { return severalThreadsActive_; }
    static void severalThreadsActiveIs(bool several) noexcept { severalThreadsActive_ = several; }

private:
    PLATFORM_API static bool severalThreadsActive_;
};

}  // namespace Orin
