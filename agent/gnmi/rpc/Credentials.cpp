#include "agent/gnmi/rpc/Credentials.h"

#include <grpc/grpc_security.h>
#include <grpc/grpc_security_constants.h>
#include <grpcpp/security/auth_context.h>
#include <grpcpp/security/server_credentials.h>

#include <algorithm>
#include <mutex>
#include <utility>

namespace QosAgent::Gnmi {

struct TlsIdentity::Current {
    std::mutex mutex;
    TlsFiles files;
    unsigned generation = 1;
};

/// What one server has fetched.
struct TlsIdentity::Fetcher {
    Current& current;
    unsigned generation = 0;
};

namespace {

/// Credentials made with gRPC's C interface, the only one that fetches certificates anew.
class FetchingCredentials : public grpc::ServerCredentials {
public:
    explicit FetchingCredentials(grpc_server_credentials* credentials)
        : credentials_(credentials) {}
    ~FetchingCredentials() override { grpc_server_credentials_release(credentials_); }
    void SetAuthMetadataProcessor(const std::shared_ptr<grpc::AuthMetadataProcessor>&) override {}

private:
    int AddPortToServer(const std::string& address, grpc_server* server) override {
        return grpc_server_add_http2_port(server, address.c_str(), credentials_);
    }

    grpc_server_credentials* credentials_;
};

grpc_ssl_server_certificate_config* configOf(const TlsFiles& files) {
    const grpc_ssl_pem_key_cert_pair pair{files.key.c_str(), files.certificates.c_str()};
    return grpc_ssl_server_certificate_config_create(files.clientSigners.c_str(), &pair, 1);
}

bool hasName(const grpc::AuthContext& peer, const char* property,
             const std::vector<std::string>& names) {
    const auto values = peer.FindPropertyValues(property);
    return std::any_of(values.begin(), values.end(), [&](grpc::string_ref value) {
        return std::find(names.begin(), names.end(), std::string(value.data(), value.size())) !=
               names.end();
    });
}

}  // namespace

TlsIdentity::TlsIdentity(TlsFiles files) : current_(std::make_unique<Current>()) {
    current_->files = std::move(files);
}

TlsIdentity::~TlsIdentity() = default;

void TlsIdentity::replace(TlsFiles files) {
    const std::lock_guard lock(current_->mutex);
    current_->files = std::move(files);
    ++current_->generation;
}

std::shared_ptr<grpc::ServerCredentials> TlsIdentity::credentials() {
    const auto fetch = [](void* data, grpc_ssl_server_certificate_config** config) {
        Fetcher& fetcher = *static_cast<Fetcher*>(data);
        Current& current = fetcher.current;
        const std::lock_guard lock(current.mutex);
        if (std::exchange(fetcher.generation, current.generation) == current.generation)
            return GRPC_SSL_CERTIFICATE_CONFIG_RELOAD_UNCHANGED;
        *config = configOf(current.files);
        return GRPC_SSL_CERTIFICATE_CONFIG_RELOAD_NEW;
    };
    fetchers_.push_back(std::make_unique<Fetcher>(Fetcher{*current_}));
    grpc_ssl_server_credentials_options* options =
        grpc_ssl_server_credentials_create_options_using_config_fetcher(
            GRPC_SSL_REQUEST_AND_REQUIRE_CLIENT_CERTIFICATE_AND_VERIFY, fetch,
            fetchers_.back().get());
    return std::make_shared<FetchingCredentials>(
        grpc_ssl_server_credentials_create_with_options(options));
}

bool Writers::mayWrite(const grpc::AuthContext& peer) const {
    return isEverybody_ || hasName(peer, GRPC_X509_CN_PROPERTY_NAME, names_) ||
           hasName(peer, GRPC_PEER_DNS_PROPERTY_NAME, names_) ||
           hasName(peer, GRPC_PEER_URI_PROPERTY_NAME, names_);
}

}  // namespace QosAgent::Gnmi
