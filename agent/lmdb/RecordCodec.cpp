#include "agent/lmdb/RecordCodec.h"

#include <openssl/evp.h>
#include <zlib.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <stdexcept>

namespace QosAgent::Lmdb {
namespace {

/// Of a folded step, and so that it is shorter than one that is not.
constexpr std::size_t kKeptOfStep = 16;
/// No name has this byte: names are UTF-8.
constexpr char kFold = '\xFF';
constexpr std::size_t kHeadBytes = 8;

void appendNumber(std::string& text, std::uint32_t number) {
    for (int shift = 0; shift < 32; shift += 8)
        text += static_cast<char>((number >> shift) & 0xFF);
}

std::uint32_t numberAt(std::string_view text, std::size_t at) {
    std::uint32_t number = 0;
    for (std::size_t i = 4; i > 0; --i)
        number = number << 8 | static_cast<unsigned char>(text[at + i - 1]);
    return number;
}

std::uint32_t checksum(std::string_view key, std::string_view rest) {
    const auto add = [](uLong sum, std::string_view bytes) {
        return ::crc32_z(sum, reinterpret_cast<const Bytef*>(bytes.data()), bytes.size());
    };
    return static_cast<std::uint32_t>(add(add(0, key), rest));
}

constexpr char kEnd = '\0';
constexpr char kEscape = '\1';

/// The bytes of the step as they stand in a key, unless it is folded.
void appendEscaped(std::string& key, std::string_view step) {
    for (const char byte : step) {
        if (byte == kEnd || byte == kEscape) key += kEscape;
        key += byte;
    }
}

void appendFolded(std::string& key, std::string_view step) {
    std::array<unsigned char, EVP_MAX_MD_SIZE> hash{};
    unsigned size = 0;
    if (::EVP_Digest(step.data(), step.size(), hash.data(), &size, ::EVP_sha256(), nullptr) != 1)
        throw std::runtime_error("SHA-256 is not to be had");
    appendEscaped(key, step.substr(0, kKeptOfStep));
    key += kFold;
    constexpr std::string_view kDigits = "0123456789abcdef";
    for (unsigned i = 0; i < size; ++i)
        key.append(1, kDigits[hash[i] >> 4]).append(1, kDigits[hash[i] & 15]);
}

void appendStep(std::string& key, std::string_view step) {
    const std::size_t begin = key.size();
    appendEscaped(key, step);
    if (key.size() - begin > kLongestStep) {
        key.resize(begin);
        appendFolded(key, step);
    }
    key += kEnd;
}

/// The path that a key without folded steps stands for.
std::string pathIn(std::string_view key) {
    std::string path;
    for (std::size_t at = 1; at + 1 < key.size(); ++at) {
        if (key[at] == kEscape)
            path += key[++at];
        else
            path += key[at] == kEnd ? '/' : key[at];
    }
    return path;
}

}  // namespace

std::string keyOf(RecordArea area, std::string_view path) {
    std::string key(1, static_cast<char>(area));
    for (std::size_t begin = 0; begin < path.size();) {
        const std::size_t end = std::min(path.find('/', begin), path.size());
        appendStep(key, path.substr(begin, end - begin));
        begin = end + 1;
    }
    return key;
}

std::string valueOf(std::string_view key, std::string_view path, std::string_view record) {
    const bool isFolded = key.find(kFold) != std::string_view::npos;
    std::string rest;
    appendNumber(rest, isFolded ? static_cast<std::uint32_t>(path.size()) : 0);
    if (isFolded) rest.append(path);
    rest.append(record);
    std::string value;
    value.reserve(rest.size() + 4);
    appendNumber(value, checksum(key, rest));
    return value.append(rest);
}

std::optional<Decoded> decoded(std::string_view key, std::string_view value) {
    if (key.empty() || value.size() < kHeadBytes) return {};
    if (numberAt(value, 0) != checksum(key, value.substr(4))) return {};
    const std::size_t pathSize = numberAt(value, 4);
    const std::string_view rest = value.substr(kHeadBytes);
    if (pathSize == 0) return Decoded{pathIn(key), rest};
    if (pathSize > rest.size()) return {};
    return Decoded{std::string(rest.substr(0, pathSize)), rest.substr(pathSize)};
}

}  // namespace QosAgent::Lmdb
