#include "agent/json/SyntaxFault.h"

#include <string>

#include "agent/json/Excerpt.h"

namespace QosAgent {

namespace {

std::string found(std::string_view text, std::size_t at) {
    return ", found " + (at < text.size() ? describeByte(text[at]) : "the end of the text");
}

Fault stringFault(std::string_view text, std::size_t start, std::size_t broken,
                  std::string_view reason) {
    const auto says = [reason](std::string_view words) {
        return reason.find(words) != std::string_view::npos;
    };
    if (broken >= text.size()) return {text.size(), "the text ends within a string"};
    if (says("UTF-8")) return {start, "the string is not UTF-8"};
    if (says("surrogate")) return {start, "the string has a lone surrogate"};
    if (says("4 hex digits")) {
        return {broken, "expected four hexadecimal digits after '\\u'" + found(text, broken)};
    }
    if (says("control character")) {
        return {broken, "a control character in a string must be escaped" + found(text, broken)};
    }
    return {broken, "unknown escape in a string" + found(text, broken)};
}

Fault wordFault(std::string_view text, std::size_t start, std::size_t broken) {
    const std::string_view word = text[start] == 't'   ? "true"
                                  : text[start] == 'f' ? "false"
                                                       : "null";
    return {broken, "expected '" + std::string(word) + "'" + found(text, broken)};
}

bool beginsNumber(char byte) {
    return byte == '-' || (byte >= '0' && byte <= '9');
}

}  // namespace

Fault syntaxFault(std::string_view text, const Expected& expected, std::size_t start,
                  std::size_t broken, std::string_view reason) {
    const bool belongs =
        start < text.size() && expected.firstBytes.find(text[start]) != std::string_view::npos;
    if (!belongs) return {start, "expected " + std::string(expected.words) + found(text, start)};
    if (text[start] == '"') return stringFault(text, start, broken, reason);
    if (!beginsNumber(text[start])) return wordFault(text, start, broken);
    return {broken, "expected a digit in a number" + found(text, broken)};
}

}  // namespace QosAgent
