#include "agent/options/ServiceArguments.h"

#include <array>
#include <string>
#include <string_view>
#include <utility>

#include "agent/json/Excerpt.h"

namespace QosAgent {
namespace {

/// The options that need a database in this process.
constexpr std::array kNotBesideConnect{"--plugin", "--toggle-dir", "--trace",  "--trace-file",
                                       "--strict", "--check",      "--listen", "--record",
                                       "--gnmi",   "--http",       "--store"};

std::string storeFault(const std::string& url) {
    for (const std::string_view scheme : {"lmdb:", "redis://", "rediss://", "redis+unix://"})
        if (url.starts_with(scheme) && url.size() > scheme.size()) return {};
    return "expected lmdb:DIR or redis://HOST:PORT/DB?name=NAME, found " + excerpt(url);
}

}  // namespace

ServiceArguments::ServiceArguments(CLI::App& app, ServiceOptions& options)
    : app_(app), options_(options) {
    app.add_option("--listen", options.listen,
                   "Go on as a service: each connection to this Unix\n"
                   "socket is a change stream")
        ->type_name("PATH");
    app.add_option("--connect", options.connect,
                   "Be a client of the service at this socket: INPUT goes\n"
                   "to it, and what it holds is printed")
        ->type_name("PATH");
    app.add_option("--record", options.record, "Append each line as it is applied")
        ->type_name("FILE");
    for (const DoorKind& kind : doorKinds())
        describeDoor(kind);
}

void ServiceArguments::describeDoor(const DoorKind& kind) {
    for (const DoorOption& option : kind.options) {
        const std::string name = std::string("--") + option.name;
        CLI::Option* given =
            option.value == nullptr
                ? app_.add_flag(name, option.help)->disable_flag_override()
                : app_.add_option(name)->description(option.help)->type_name(option.value);
        given_.push_back({&kind, &option, given});
    }
}

void ServiceArguments::complete() {
    refuseBesideConnect();
    for (const DoorKind& kind : doorKinds())
        completeDoor(kind);
}

void ServiceArguments::completeDoor(const DoorKind& kind) {
    DoorRequest request;
    for (const auto& [ofKind, option, given] : given_) {
        if (ofKind != &kind || given->count() == 0) continue;
        const bool isFirst = option == &kind.options.front();
        if (!isFirst && request.option.empty())
            throw CLI::ValidationError(given->get_name(), std::string("needs --") + kind.name);
        const std::string value = option->value == nullptr ? "" : given->results().front();
        request.options.emplace_back(option->name, value);
        if (!isFirst) continue;
        request.option = given->get_name();
        request.library = libraryFor(option->name, value);
        if (request.option != "--store") continue;
        if (const std::string fault = storeFault(value); !fault.empty())
            throw CLI::ValidationError(request.option, fault);
    }
    for (const auto& [name, value] : request.options)
        if (name == "apply-documents") options_.appliesDocuments = true;
    if (request.option == "--store")
        options_.store = std::move(request);
    else if (!request.option.empty())
        options_.doors.push_back(std::move(request));
}

void ServiceArguments::refuseBesideConnect() const {
    if (options_.connect.empty()) return;
    for (const char* name : kNotBesideConnect)
        if (app_.get_option(name)->count() != 0)
            throw CLI::ValidationError("--connect", std::string("cannot be combined with ") + name);
}

}  // namespace QosAgent
