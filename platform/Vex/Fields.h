#pragma once

#include "platform/Vex/Child.h"
#include "platform/Vex/Children.h"
#include "platform/Vex/Nested.h"
#include "platform/Vex/Watched.h"

/// The kinds of field that a machine is made of say for themselves what the machine's life cycle
/// does to them; the engine asks no more than which of these they have: `subscribedIs`, `activeIs`,
/// `zombieIs`, `clear`, and equality with what was given.
