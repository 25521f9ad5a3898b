#include "platform/Vex/HashMap2018.h"

namespace Vex {

OvSlab::Tracker& memberTracker() noexcept {
    static OvSlab::Tracker tracker("Vex::HashMap2018::Member");
    return tracker;
}

}  // namespace Vex
