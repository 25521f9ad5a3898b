#pragma once

#include <memory>
#include <string>
#include <vector>

#include "agent/gnmi/rpc/TlsFiles.h"

namespace grpc {
class AuthContext;
class ServerCredentials;
}  // namespace grpc

namespace QosAgent::Gnmi {

/// The server's certificate and its clients' signers, which can be replaced while connections are
/// open: a new handshake uses the new ones, a connection keeps what it began with. Any thread.
class TlsIdentity {
public:
    explicit TlsIdentity(TlsFiles files);
    ~TlsIdentity();
    TlsIdentity(const TlsIdentity&) = delete;
    TlsIdentity& operator=(const TlsIdentity&) = delete;

    void replace(TlsFiles files);
    /// Credentials, for one server, that ask clients for a certificate and verify it. The identity
    /// must outlive them.
    std::shared_ptr<grpc::ServerCredentials> credentials();

private:
    struct Current;
    struct Fetcher;
    std::unique_ptr<Current> current_;
    std::vector<std::unique_ptr<Fetcher>> fetchers_;
};

/// Who may change the configuration.
class Writers {
public:
    static Writers everybody() { return Writers(true, {}); }
    /// Those whose certificate has one of these as its common name, or as a DNS or URI alternative
    /// name.
    static Writers named(std::vector<std::string> names) { return {false, std::move(names)}; }

    bool mayWrite(const grpc::AuthContext& peer) const;

private:
    Writers(bool isEverybody, std::vector<std::string> names)
        : isEverybody_(isEverybody), names_(std::move(names)) {}

    bool isEverybody_;
    std::vector<std::string> names_;
};

}  // namespace QosAgent::Gnmi
