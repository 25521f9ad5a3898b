#pragma once

#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "agent/gnmi/rpc/Credentials.h"
#include "agent/gnmi/rpc/Listener.h"
#include "agent/service/Service.h"

namespace QosAgent::Gnmi {

/// How the server is asked to serve.
struct ServerOptions {
    std::string address;
    bool isInsecure = false;
    TlsFileNames tls;
    /// Whose certificates may Set.
    std::vector<std::string> writers;
};

/// The gNMI server: the four calls, health and reflection.
class Server {
public:
    /// Opens the server; returns one line that says why it could not. The service must outlive it.
    static std::variant<std::unique_ptr<Server>, std::string> open(Service& service,
                                                                   const ServerOptions& options);
    /// Ends all calls with a status, and returns when no thread of the server runs any more.
    ~Server();
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    /// The address, with the port that it got.
    const std::string& address() const { return address_; }
    /// Reads the TLS files again; returns one line if they cannot be used, and keeps the old ones.
    std::string reload();

private:
    struct Running;

    explicit Server(ServerOptions options);
    void run(Service& service, ListeningSocket socket);

    ServerOptions options_;
    std::string address_;
    std::optional<TlsIdentity> identity_;
    std::unique_ptr<Running> running_;
};

}  // namespace QosAgent::Gnmi
