#include "agent/service/DoorTable.h"

#include <array>

#include "agent/service/Door.h"
#include "agent/store/Store.h"

namespace QosAgent {
namespace {

constexpr std::array kGnmi{
    DoorOption{"gnmi", "ADDRESS", "Serve gNMI at HOST:PORT, [IPV6]:PORT or unix:PATH"},
    DoorOption{"tls-cert", "FILE", "The gNMI server's certificate chain, PEM"},
    DoorOption{"tls-key", "FILE", "Its private key, PEM"},
    DoorOption{"tls-client-ca", "FILE", "Who may sign the clients' certificates, PEM"},
    DoorOption{"gnmi-insecure", nullptr, "gNMI without TLS, on loopback and unix: only"},
    DoorOption{"gnmi-writers", "NAMES", "Whose certificates may Set, separated by commas"},
};
constexpr std::array kHttp{
    DoorOption{"http", "ADDRESS", "Serve the status page and metrics, read-only"},
    DoorOption{"http-open", nullptr, "The page on other addresses than loopback"},
};
constexpr std::array kStore{
    DoorOption{"store", "URL", "Keep the database: lmdb:DIR or\nredis://HOST:PORT/DB?name=NAME"},
    DoorOption{"apply-documents", nullptr, "Apply documents to a store that holds something, too"},
};
constexpr std::array kKinds{
    DoorKind{"gnmi", kGnmi},
    DoorKind{"http", kHttp},
    DoorKind{"store", kStore},
};

}  // namespace

std::span<const DoorKind> doorKinds() {
    return kKinds;
}

InstalledLibrary libraryFor(std::string_view option, std::string_view value) {
    if (option == "gnmi") return {"libqos-agent-gnmi.so", "qos-agent-gnmi", kDoorSymbol};
    if (option == "http") return {"libqos-agent-http.so", "qos-agent-http", kDoorSymbol};
    if (value.starts_with("redis"))
        return {"libqos-agent-redis.so", "qos-agent-redis", kStoreSymbol};
    return {"libqos-agent-lmdb.so", "qos-agent-lmdb", kStoreSymbol};
}

}  // namespace QosAgent
