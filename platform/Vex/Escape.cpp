#include "platform/Vex/Escape.h"

namespace Vex {
namespace {

constexpr std::string_view kLetters = "abtnvfr";  // U+0007 to U+000D

bool isPlain(unsigned char c) noexcept {
    return c >= 0x20 && c != 0x7F && c != '\\';
}

void appendEscape(std::string& out, unsigned char c) {
    out += '\\';
    if (c == '\\') {
        out += '\\';
    } else if (c >= '\a' && c <= '\r') {
        out += kLetters[c - static_cast<unsigned char>('\a')];
    } else {
        out += static_cast<char>('0' + (c >> 6));
        out += static_cast<char>('0' + (c >> 3 & 7));
        out += static_cast<char>('0' + (c & 7));
    }
}

}  // namespace

void appendEscaped(std::string& out, std::string_view text) {
    for (const char c : text) {
        if (isPlain(static_cast<unsigned char>(c)))
            out += c;
        else
            appendEscape(out, static_cast<unsigned char>(c));
    }
}

}  // namespace Vex
