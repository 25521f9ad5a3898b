#include "agent/json/Visible.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

#include "agent/json/HexDigits.h"
#include "platform/Vex/Escape.h"

namespace QosAgent {
namespace {

/// A character of a text, or a byte that belongs to no character.
struct Character {
    char32_t code;
    std::size_t bytes;
    bool isStray = false;
};

struct Range {
    char32_t first;
    char32_t last;
};

constexpr Range kEscaped[] = {
    {0x00, 0x1F},        // controls
    {0x7F, 0x9F},        // controls
    {0xAD, 0xAD},        // soft hyphen
    {0x61C, 0x61C},      // Arabic letter mark
    {0x200B, 0x200B},    // zero width space
    {0x200E, 0x200F},    // marks of direction
    {0x2028, 0x202E},    // line separators, embeddings, overrides
    {0x2060, 0x206F},    // invisible operators, isolates
    {0xFEFF, 0xFEFF},    // byte order mark
    {0xFFF9, 0xFFFB},    // interlinear annotations
    {0xE0000, 0xE007F},  // tags
};

bool continues(std::string_view text, std::size_t at) {
    return at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80;
}

/// Returns the size of a character that begins with this byte; 0 if none does.
std::size_t lengthAfter(unsigned char lead) {
    if (lead < 0x80) return 1;
    if (lead < 0xC2 || lead > 0xF4) return 0;
    return lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
}

/// Returns the first character of a text. Precondition: not empty.
Character firstOf(std::string_view text) {
    const auto lead = static_cast<unsigned char>(text[0]);
    const std::size_t length = lengthAfter(lead);
    const Character stray{lead, 1, true};
    if (length == 0) return stray;
    if (length == 1) return {lead, 1};
    auto code = static_cast<char32_t>(lead & (0x7Fu >> length));
    for (std::size_t at = 1; at < length; ++at) {
        if (!continues(text, at)) return stray;
        code = code << 6 | (static_cast<unsigned char>(text[at]) & 0x3Fu);
    }
    return {code, length};
}

bool isEscaped(const Character& character) {
    if (character.isStray) return character.code < 0xA0;
    return std::any_of(std::begin(kEscaped), std::end(kEscaped), [&](const Range& range) {
        return character.code >= range.first && character.code <= range.last;
    });
}

void appendEscape(std::string& out, const Character& character) {
    const bool isLong = character.code > 0xFFFF;
    out += character.isStray ? "\\x" : isLong ? "\\U" : "\\u";
    const int digits = character.isStray ? 2 : isLong ? 8 : 4;
    for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4)
        out += kHexDigits[character.code >> shift & 0xF];
}

}  // namespace

std::string visible(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    while (!text.empty()) {
        const Character character = firstOf(text);
        if (isEscaped(character))
            appendEscape(out, character);
        else
            out += text.substr(0, character.bytes);
        text.remove_prefix(character.bytes);
    }
    return out;
}

std::string visibleName(std::string_view name) {
    std::string escaped;
    Vex::appendEscaped(escaped, name);
    return visible(escaped);
}

}  // namespace QosAgent
