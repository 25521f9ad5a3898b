#include <string_view>
#include <utility>

#include "agent/gnmi/rpc/Server.h"
#include "agent/service/Door.h"

namespace QosAgent {

namespace {

using Gnmi::Server;
using Gnmi::ServerOptions;

class GnmiDoor final : public Door {
public:
    explicit GnmiDoor(std::unique_ptr<Server> server) : server_(std::move(server)) {}

    std::string description() const override { return "gnmi on " + server_->address(); }
    std::string reload() override { return server_->reload(); }

private:
    std::unique_ptr<Server> server_;
};

/// Adds the names of a list that is divided by commas.
void addNames(std::vector<std::string>& names, std::string_view list) {
    while (!list.empty()) {
        const std::size_t comma = list.find(',');
        if (comma != 0) names.emplace_back(list.substr(0, comma));
        list.remove_prefix(comma == std::string_view::npos ? list.size() : comma + 1);
    }
}

ServerOptions optionsOf(const DoorOptions& given) {
    ServerOptions options;
    for (const auto& [name, value] : given) {
        if (name == "gnmi") options.address = value;
        if (name == "gnmi-insecure") options.isInsecure = true;
        if (name == "gnmi-writers") addNames(options.writers, value);
        if (name == "tls-cert") options.tls.certificates = value;
        if (name == "tls-key") options.tls.key = value;
        if (name == "tls-client-ca") options.tls.clientSigners = value;
    }
    return options;
}

/// What is wrong with the options; empty if nothing is.
std::string faultOf(const ServerOptions& options) {
    const auto& tls = options.tls;
    const bool hasAll = !tls.certificates.empty() && !tls.key.empty() && !tls.clientSigners.empty();
    const bool hasAny = !tls.certificates.empty() || !tls.key.empty() || !tls.clientSigners.empty();
    if (options.isInsecure && hasAny) return "--gnmi-insecure and TLS files exclude each other";
    if (!options.isInsecure && !hasAll)
        return "--gnmi needs --tls-cert, --tls-key and --tls-client-ca, or --gnmi-insecure";
    return {};
}

OpenedDoor openGnmi(Service& service, const DoorOptions& given) {
    const ServerOptions options = optionsOf(given);
    if (auto fault = faultOf(options); !fault.empty()) return fault;
    auto server = Server::open(service, options);
    if (auto* why = std::get_if<std::string>(&server)) return std::move(*why);
    return std::make_unique<GnmiDoor>(std::get<std::unique_ptr<Server>>(std::move(server)));
}

}  // namespace

}  // namespace QosAgent

QOS_AGENT_DOOR(QosAgent::openGnmi)
