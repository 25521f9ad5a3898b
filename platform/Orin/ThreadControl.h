#pragma once

#include "platform/Orin/Export.h"

namespace Orin {

/// Tells whether more than one thread of the process uses reference-counted objects.
///
/// An agent starts with one thread and plain counts. It must set the flag before it starts a second
/// thread that holds a `Ptr` or a `String`; from then on counts are atomic. It may reset the flag
/// only when one thread is left.
class ThreadControl {
public:
    static bool severalThreadsActive() noexcept { return severalThreadsActive_; }
    static void severalThreadsActiveIs(bool several) noexcept { severalThreadsActive_ = several; }

private:
    PLATFORM_API static bool severalThreadsActive_;
};

}  // namespace Orin
