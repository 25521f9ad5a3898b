#include "agent/json/Excerpt.h"

#include <algorithm>

#include "agent/json/HexDigits.h"
#include "agent/json/JsonWriter.h"
#include "agent/json/Visible.h"

namespace QosAgent {

namespace {

void appendHex(std::string& out, unsigned char byte) {
    out += kHexDigits[byte >> 4];
    out += kHexDigits[byte & 0xf];
}

bool continuesCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xc0) == 0x80;
}

std::string_view cutBetweenCharacters(std::string_view text, std::size_t mostBytes) {
    if (text.size() <= mostBytes) return text;
    std::size_t size = mostBytes;
    while (size > 0 && continuesCharacter(text[size]))
        --size;
    return text.substr(0, size);
}

}  // namespace

std::string excerpt(std::string_view text, std::size_t mostBytes) {
    const std::string_view kept = cutBetweenCharacters(text, mostBytes);
    std::string quoted;
    appendQuoted(quoted, kept);
    std::string out = visible(quoted);
    if (kept.size() < text.size()) out += "...";
    return out;
}

std::string excerptAround(std::string_view line, std::size_t offset) {
    constexpr std::size_t kMostBytes = 160;
    constexpr std::size_t kBytesBefore = 60;
    std::size_t begin = 0;
    if (line.size() > kMostBytes)
        begin = std::min(offset - std::min(offset, kBytesBefore), line.size() - kMostBytes);
    while (begin > 0 && continuesCharacter(line[begin]))
        --begin;
    const std::string_view rest = line.substr(begin);
    const std::string_view kept = cutBetweenCharacters(rest, kMostBytes);
    std::string out = begin == 0 ? "" : "...";
    out += kept;
    if (kept.size() < rest.size()) out += "...";
    return out;
}

std::string describeByte(char byte) {
    if (byte >= ' ' && byte <= '~') return {'\'', byte, '\''};
    std::string out = "byte 0x";
    appendHex(out, static_cast<unsigned char>(byte));
    return out;
}

}  // namespace QosAgent
