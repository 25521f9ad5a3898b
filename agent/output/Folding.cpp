#include "agent/output/Folding.h"

#include <algorithm>

namespace QosAgent {
namespace {

bool beginsCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) != 0x80;
}

std::string_view firstCharacters(std::string_view text, std::size_t count) {
    std::size_t end = 0;
    for (; end < text.size(); ++end)
        if (beginsCharacter(text[end]) && count-- == 0) break;
    return text.substr(0, end);
}

/// What of the text fills a line of that width: up to a sign between words if there is one.
std::string_view lineOf(std::string_view text, std::size_t width, std::string_view signs) {
    const std::string_view most = firstCharacters(text, width);
    if (most.size() == text.size()) return text;
    const std::size_t sign = most.find_last_of(signs);
    return sign == std::string_view::npos ? most : most.substr(0, sign + 1);
}

}  // namespace

std::size_t widthOf(std::string_view text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), beginsCharacter));
}

std::vector<std::string> folded(std::string_view text, std::size_t width, std::size_t indent,
                                std::string_view signs) {
    std::string_view line = lineOf(text, width, signs);
    std::vector<std::string> lines{std::string(line)};
    indent = std::min(indent, width / 2);
    for (text.remove_prefix(line.size()); !text.empty(); text.remove_prefix(line.size())) {
        line = lineOf(text, width - indent, signs);
        lines.push_back(std::string(indent, ' ').append(line));
    }
    return lines;
}

}  // namespace QosAgent
