#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "agent/gnmi/rpc/Server.h"
#include "tests/agent/gnmi/Client.h"
#include "tests/agent/gnmi/ToyService.h"
#include "tests/agent/support/TemporaryFolder.h"

namespace QosAgent::Gnmi {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr const char* kDelete = "delete { elem { name: 'qos' } }";

/// Two signers, a server's certificate and those of clients, made with openssl.
class Certificates {
public:
    Certificates() {
        sign("clients", "");
        sign("others", "");
        sign("server", "clients", "subjectAltName=DNS:localhost,IP:127.0.0.1");
        sign("writer", "clients", "subjectAltName=DNS:writer.example,URI:spiffe://example/writer");
        sign("reader", "clients");
        sign("stranger", "others");
    }

    std::string file(const std::string& name) const { return (folder_ / name).string(); }
    std::string text(const std::string& name) const {
        std::ifstream file(folder_ / name);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    std::shared_ptr<grpc::ChannelCredentials> of(const std::string& client) const {
        grpc::SslCredentialsOptions options;
        options.pem_root_certs = text("clients.pem") + text("others.pem");
        if (!client.empty()) {
            options.pem_cert_chain = text(client + ".pem");
            options.pem_private_key = text(client + ".key");
        }
        return grpc::SslCredentials(options);
    }
    /// Makes a certificate with its own name as the common name; signed by itself without `signer`.
    void sign(const std::string& name, const std::string& signer,
              const std::string& extension = {}) {
        std::string command =
            "openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 "
            "-nodes -days 2 -subj /CN=" +
            name + " -out " + file(name + ".pem") + " -keyout " + file(name + ".key");
        if (!signer.empty())
            command += " -CA " + file(signer + ".pem") + " -CAkey " + file(signer + ".key") +
                       " -addext basicConstraints=CA:FALSE";
        if (!extension.empty()) command += " -addext " + extension;
        if (std::system((command + " 2>" + file("openssl.log")).c_str()) != 0)
            throw std::runtime_error(text("openssl.log"));
    }

private:
    TemporaryFolder folder_;
};

class TlsTest : public testing::Test {
protected:
    ServerOptions options() const {
        ServerOptions options;
        options.address = "127.0.0.1:0";
        options.tls = {certificates.file("server.pem"), certificates.file("server.key"),
                       certificates.file("clients.pem")};
        return options;
    }
    std::unique_ptr<Server> open(std::vector<std::string> writers = {}) {
        ServerOptions asked = options();
        asked.writers = std::move(writers);
        auto opened = Server::open(service, asked);
        if (auto* why = std::get_if<std::string>(&opened)) throw std::runtime_error(*why);
        return std::get<std::unique_ptr<Server>>(std::move(opened));
    }
    std::unique_ptr<Stub> connect(const Server& server, const std::string& client) {
        return gnmi::gNMI::NewStub(channelTo(server.address(), certificates.of(client)));
    }
    std::string whyNot(const ServerOptions& asked) {
        const auto opened = Server::open(service, asked);
        const auto* why = std::get_if<std::string>(&opened);
        return why == nullptr ? "" : *why;
    }

    Certificates certificates;
    ToyService service;
    gnmi::GetResponse response;
};

TEST_F(TlsTest, letsInOnlyClientsWithACertificateOfTheirSigner) {
    const auto server = open();
    EXPECT_TRUE(get(*connect(*server, "reader"), "path { }", response).ok());
    EXPECT_EQ(get(*connect(*server, "stranger"), "path { }", response).error_code(),
              grpc::StatusCode::UNAVAILABLE);
    EXPECT_EQ(get(*connect(*server, ""), "path { }", response).error_code(),
              grpc::StatusCode::UNAVAILABLE);
    const auto plain = gnmi::gNMI::NewStub(channelTo(server->address()));
    EXPECT_EQ(get(*plain, "path { }", response).error_code(), grpc::StatusCode::UNAVAILABLE);
}

TEST_F(TlsTest, letsNobodySetWhoIsNotNamed) {
    const auto server = open();
    EXPECT_EQ(set(*connect(*server, "writer"), kDelete).error_code(),
              grpc::StatusCode::PERMISSION_DENIED);
    EXPECT_THAT(service.lines(), testing::IsEmpty());
}

TEST_F(TlsTest, letsWritersSetByCommonNameAndAlternativeNames) {
    for (const auto* name : {"writer", "writer.example", "spiffe://example/writer"}) {
        const auto server = open({"nobody", name});
        EXPECT_TRUE(set(*connect(*server, "writer"), kDelete).ok()) << name;
        EXPECT_EQ(set(*connect(*server, "reader"), kDelete).error_code(),
                  grpc::StatusCode::PERMISSION_DENIED)
            << name;
    }
}

TEST_F(TlsTest, refusesASetBeforeItLooksAtIt) {
    const auto server = open({"writer"});
    // Outside the model, which is told to writers alone.
    EXPECT_EQ(set(*connect(*server, "reader"), "delete { elem { name: 'x' } }").error_code(),
              grpc::StatusCode::PERMISSION_DENIED);
    EXPECT_EQ(set(*connect(*server, "writer"), "delete { elem { name: 'x' } }").error_code(),
              grpc::StatusCode::UNIMPLEMENTED);
}

TEST_F(TlsTest, takesNewFilesForNewConnectionsAndKeepsStreams) {
    const auto server = open();
    const auto stub = connect(*server, "reader");
    ClientStream stream(*stub, "subscribe { subscription { path { elem { name: 'qos' } } } }");
    EXPECT_THAT(stream.next(), ElementsAre("sync"));

    std::filesystem::copy_file(certificates.file("others.pem"), certificates.file("clients.pem"),
                               std::filesystem::copy_options::overwrite_existing);
    EXPECT_EQ(server->reload(), "");
    EXPECT_EQ(get(*connect(*server, "reader"), "path { }", response).error_code(),
              grpc::StatusCode::UNAVAILABLE);
    TreeBuilder tree;
    service.update(tree.classifier("c"), {"classifier/c/state"});
    EXPECT_THAT(stream.next(), ElementsAre("name=\"c\"", "type=\"IPV4\""));
}

TEST_F(TlsTest, keepsTheOldFilesWhenTheNewOnesAreBad) {
    const auto server = open();
    std::ofstream(certificates.file("server.pem")) << "rubbish";
    EXPECT_THAT(server->reload(), HasSubstr("server.pem: holds no certificate"));
    EXPECT_TRUE(get(*connect(*server, "reader"), "path { }", response).ok());
}

TEST_F(TlsTest, refusesFilesInOneLine) {
    ServerOptions asked = options();
    asked.tls.key = certificates.file("reader.key");
    EXPECT_THAT(whyNot(asked), HasSubstr("reader.key: is not the key of the certificate in"));
    asked.tls.key = certificates.file("reader.pem");
    EXPECT_THAT(whyNot(asked), HasSubstr("reader.pem: holds no private key"));
    asked.tls.key = certificates.file("none");
    EXPECT_THAT(whyNot(asked), HasSubstr("none: cannot be read: No such file"));
    asked = options();
    asked.tls.clientSigners = certificates.file("server.key");
    EXPECT_THAT(whyNot(asked), HasSubstr("server.key: holds no certificate"));
}

}  // namespace
}  // namespace QosAgent::Gnmi
