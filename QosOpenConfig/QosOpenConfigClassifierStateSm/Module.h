#pragma once

#include "platform/Vex/Module.h"

namespace QosOc {

/// The types of the state machine source.
extern const Vex::Module kStateSmModule;

}  // namespace QosOc
