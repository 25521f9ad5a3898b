#pragma once

#include <cstdint>

namespace Strata {

/// The progress of a group of mounts.
enum class MountStatus : std::uint8_t {
    mountUnknown_ = 0,
    mountRequested_ = 1,
    mountInProgress_ = 2,
    mountFailed_ = 3,
    mountSuccess_ = 4,
};
using enum MountStatus;

}  // namespace Strata
