#pragma once

#include <memory>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "agent/service/Service.h"

/// How the program opens a door that is a library of its own, such as `libqos-agent-gnmi.so`.
namespace QosAgent {

/// An open door: it accepts clients on threads of its own. The destructor closes it and returns
/// when none of its threads runs any more. The program calls everything here on the event thread.
class Door {
public:
    virtual ~Door() = default;

    /// What the door serves and where, to be told on standard error: `gnmi on 127.0.0.1:9339`.
    virtual std::string description() const = 0;
    /// Reads files such as certificates again. Returns why that failed, and goes on with what it
    /// had; empty if it succeeded.
    virtual std::string reload() { return {}; }
};

/// The door's options as the command line gave them: name without dashes, and value (empty for a
/// flag), in the order given. A door gets only those that are its own.
using DoorOptions = std::vector<std::pair<std::string, std::string>>;

/// An open door, or one line that says why it could not be opened. The service outlives the door.
using OpenedDoor = std::variant<std::unique_ptr<Door>, std::string>;

/// What a door's library exports. Program and library must agree on `version`.
struct DoorModule {
    unsigned version;
    OpenedDoor (*open)(Service& service, const DoorOptions& options);
};

/// Increased whenever anything that doors see changes.
inline constexpr unsigned kDoorVersion = 4;

/// The name of the one symbol that a door's library exports, `extern "C" const DoorModule*`.
inline constexpr const char* kDoorSymbol = "qosAgentDoor";

}  // namespace QosAgent

/// Defines the library's symbol: `QOS_AGENT_DOOR(openFunction)`, at namespace scope, once.
#define QOS_AGENT_DOOR(OPEN)                                                               \
    extern "C" [[gnu::visibility("default")]] const QosAgent::DoorModule* qosAgentDoor() { \
        static const QosAgent::DoorModule module{QosAgent::kDoorVersion, OPEN};            \
        return &module;                                                                    \
    }
