#pragma once

#include "platform/Vex/Child.h"
#include "platform/Vex/Children.h"
#include "platform/Vex/Nested.h"
#include "platform/Vex/Watched.h"

/// The kinds of field of a machine. Each kind implements its part of the machine's life cycle. The
/// engine only checks which of these functions a kind has: `subscribedIs`, `activeIs`, `zombieIs`,
/// `clear`, and comparison with an input.
