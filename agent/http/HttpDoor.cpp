#include <memory>
#include <string>
#include <utility>

#include "agent/http/Server.h"
#include "agent/service/Door.h"

namespace QosAgent {
namespace {

using Http::Server;
using Http::ServerOptions;

class HttpDoor final : public Door {
public:
    explicit HttpDoor(std::unique_ptr<Server> server) : server_(std::move(server)) {}

    std::string description() const override { return "http on " + server_->address(); }

private:
    std::unique_ptr<Server> server_;
};

OpenedDoor openHttp(Service& service, const DoorOptions& given) {
    ServerOptions options;
    for (const auto& [name, value] : given) {
        if (name == "http") options.address = value;
        if (name == "http-open") options.isOpen = true;
    }
    auto server = Server::open(service, options);
    if (auto* why = std::get_if<std::string>(&server)) return std::move(*why);
    return std::make_unique<HttpDoor>(std::get<std::unique_ptr<Server>>(std::move(server)));
}

}  // namespace
}  // namespace QosAgent

QOS_AGENT_DOOR(QosAgent::openHttp)
