#pragma once

#include "agent/gnmi/Refusal.h"
#include "agent/gnmi/Tree.h"

namespace gnmi {
class CapabilityRequest;
class CapabilityResponse;
class GetRequest;
class GetResponse;
}  // namespace gnmi

namespace QosAgent::Gnmi {

/// Fills the answer: one notification for each requested path, in order. `timestamp` is when the
/// tree was taken, in nanoseconds since 1970. Returns why the request is refused; nothing if it is
/// answered.
std::optional<Refusal> get(const gnmi::GetRequest& request, const Tree& tree,
                           std::int64_t timestamp, gnmi::GetResponse& response);

/// The same for Capabilities.
std::optional<Refusal> capabilities(const gnmi::CapabilityRequest& request,
                                    gnmi::CapabilityResponse& response);

}  // namespace QosAgent::Gnmi
