#pragma once

#include <CLI/CLI.hpp>
#include <vector>

#include "agent/options/ServiceOptions.h"
#include "agent/service/DoorTable.h"

namespace QosAgent {

/// The part of the command line that is about services.
class ServiceArguments {
public:
    /// Describes the options to the library, which fills `options` later.
    ServiceArguments(CLI::App& app, ServiceOptions& options);

    /// To be called once the command line was read. Throws `CLI::ParseError` if options are given
    /// that do not go together.
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
