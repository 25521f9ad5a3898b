#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "agent/store/Record.h"

/// How records look in the file. A key is the letter of the area and the steps of the path, each
/// with a 0 behind it. In a step, the bytes 0 and 1 stand behind a 1. A step that is longer than
/// `kLongestStep` bytes then is folded: its first bytes, 0xFF, and the SHA-256 of the whole step in
/// hexadecimal digits. So keys are short, whatever the names in the database, and what is below a
/// path follows it at once.
///
/// A value is a CRC-32 of the key and the rest (4 bytes, the least first), the size of the path (4
/// bytes; 0 if no step is folded), the path if that is not 0, and the record.
namespace QosAgent::Lmdb {

inline constexpr std::size_t kLongestStep = 64;

/// The key of a record, with which the keys of all records below it begin.
std::string keyOf(RecordArea area, std::string_view path);
std::string valueOf(std::string_view key, std::string_view path, std::string_view record);

struct Decoded {
    std::string path;
    std::string_view record;
};
/// What a value holds; nothing if it is damaged.
std::optional<Decoded> decoded(std::string_view key, std::string_view value);

}  // namespace QosAgent::Lmdb
