#pragma once

#include <string>
#include <variant>

namespace QosAgent::Gnmi {

/// The texts of the three files that TLS needs, in PEM.
struct TlsFiles {
    std::string certificates;  ///< the server's certificate, then those that lead to its signer
    std::string key;
    std::string clientSigners;

    friend bool operator==(const TlsFiles&, const TlsFiles&) = default;
};

/// Where they are.
struct TlsFileNames {
    std::string certificates;
    std::string key;
    std::string clientSigners;
};

/// Reads the files and checks that each holds what it should and that the key is that of the
/// certificate. Returns one line that names the file if not.
std::variant<TlsFiles, std::string> readTlsFiles(const TlsFileNames& names);

}  // namespace QosAgent::Gnmi
