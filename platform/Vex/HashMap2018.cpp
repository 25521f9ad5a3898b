#include "platform/Vex/HashMap2018.h"

namespace Vex {

OvSlab::Tracker memberTracker("Vex::HashMap2018::Member");

}  // namespace Vex
