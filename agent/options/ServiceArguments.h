#pragma once

#include <CLI/CLI.hpp>
#include <vector>

#include "agent/options/ServiceOptions.h"
#include "agent/service/DoorTable.h"

namespace QosAgent {

/// The part of the command line that is about services.
class ServiceArguments {
public:
    /// Registers the options with the library, which fills `options` when it parses.
    ServiceArguments(CLI::App& app, ServiceOptions& options);

    /// Must be called after the command line is parsed. Throws `CLI::ParseError` if options
    /// contradict each other.
    void complete();

private:
    struct Given {
        const DoorKind* kind;
        const DoorOption* option;
        const CLI::Option* given;
    };

    void describeDoor(const DoorKind& kind);
    void completeDoor(const DoorKind& kind);
    void refuseBesideConnect() const;

    CLI::App& app_;
    ServiceOptions& options_;
    std::vector<Given> given_;
};

}  // namespace QosAgent
