#pragma once

#include <optional>
#include <string>
#include <vector>

#include "agent/host/InstalledLibrary.h"
#include "agent/service/Door.h"

namespace QosAgent {

/// A door, or a store, that the command line asks for.
struct DoorRequest {
    std::string option;  ///< that asks for it, with its dashes
    InstalledLibrary library;
    DoorOptions options;
};

/// What the command line says of a service.
struct ServiceOptions {
    std::string listen;   ///< path of the socket to serve; empty: none
    std::string connect;  ///< path of the socket of a service to be a client of; empty: none
    std::string record;   ///< the file to record applied lines in; empty: none
    std::vector<DoorRequest> doors;
    std::optional<DoorRequest> store;
    bool appliesDocuments = false;  ///< to a store that holds something, too

    /// Whether the program goes on until it is stopped.
    bool isService() const { return !listen.empty() || !doors.empty(); }
};

}  // namespace QosAgent
