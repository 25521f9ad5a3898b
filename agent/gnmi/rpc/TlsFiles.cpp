#include "agent/gnmi/rpc/TlsFiles.h"

#include <openssl/bio.h>
#include <openssl/pem.h>
#include <openssl/x509.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>

namespace QosAgent::Gnmi {

namespace {

using BioPtr = std::unique_ptr<BIO, decltype(&BIO_free)>;
using CertificatePtr = std::unique_ptr<X509, decltype(&X509_free)>;
using KeyPtr = std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)>;

BioPtr bioOf(const std::string& text) {
    return {BIO_new_mem_buf(text.data(), static_cast<int>(text.size())), BIO_free};
}

/// Asks nobody for a password: a key that needs one is refused.
int noPassword(char*, int, int, void*) {
    return -1;
}

CertificatePtr firstCertificate(const std::string& text) {
    const BioPtr bio = bioOf(text);
    return {PEM_read_bio_X509(bio.get(), nullptr, noPassword, nullptr), X509_free};
}

KeyPtr keyOf(const std::string& text) {
    const BioPtr bio = bioOf(text);
    return {PEM_read_bio_PrivateKey(bio.get(), nullptr, noPassword, nullptr), EVP_PKEY_free};
}

/// Reads a file whole. Returns one line if that fails.
std::string readInto(const std::string& name, std::string& text) {
    std::ifstream file(name, std::ios::binary);
    if (!file) return name + ": cannot be read: " + std::strerror(errno);
    text.assign(std::istreambuf_iterator<char>(file), {});
    if (file.bad()) return name + ": cannot be read";
    return {};
}

}  // namespace

std::variant<TlsFiles, std::string> readTlsFiles(const TlsFileNames& names) {
    TlsFiles files;
    if (auto fault = readInto(names.certificates, files.certificates); !fault.empty()) return fault;
    if (auto fault = readInto(names.key, files.key); !fault.empty()) return fault;
    if (auto fault = readInto(names.clientSigners, files.clientSigners); !fault.empty())
        return fault;
    const CertificatePtr certificate = firstCertificate(files.certificates);
    if (certificate == nullptr) return names.certificates + ": holds no certificate in PEM";
    const KeyPtr key = keyOf(files.key);
    if (key == nullptr) return names.key + ": holds no private key in PEM without a password";
    if (X509_check_private_key(certificate.get(), key.get()) != 1)
        return names.key + ": is not the key of the certificate in " + names.certificates;
    if (firstCertificate(files.clientSigners) == nullptr)
        return names.clientSigners + ": holds no certificate in PEM";
    return files;
}

}  // namespace QosAgent::Gnmi
