#include "agent/json/JsonWriter.h"

#include <cassert>

#include "agent/json/HexDigits.h"

namespace QosAgent {

namespace {

bool mustBeEscaped(char byte) {
    return static_cast<unsigned char>(byte) < 0x20 || byte == '"' || byte == '\\';
}

/// Returns the letter of the short escape; NUL if there is none.
char shortEscape(char byte) {
    switch (byte) {
        case '"':
        case '\\':
            return byte;
        case '\b':
            return 'b';
        case '\t':
            return 't';
        case '\n':
            return 'n';
        case '\f':
            return 'f';
        case '\r':
            return 'r';
        default:
            return '\0';
    }
}

void appendEscape(std::string& out, char byte) {
    out += '\\';
    if (const char letter = shortEscape(byte)) {
        out += letter;
        return;
    }
    out += "u00";
    out += kHexDigits[byte >> 4];
    out += kHexDigits[byte & 0xf];
}

}  // namespace

void appendQuoted(std::string& out, std::string_view text) {
    out += '"';
    std::size_t plain = 0;  // begin of the current run of bytes that need no escape
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (!mustBeEscaped(text[at])) continue;
        out += text.substr(plain, at - plain);
        appendEscape(out, text[at]);
        plain = at + 1;
    }
    out += text.substr(plain);
    out += '"';
}

JsonWriter::JsonWriter(std::string& out, Style style) : out_(out), style_(style) {}

JsonWriter& JsonWriter::key(std::string_view name) {
    assert(!open_.empty() && open_.back().close == '}' && !isAfterKey_);
    beginItem();
    appendQuoted(out_, name);
    out_ += style_ == Style::compact ? ":" : ": ";
    isAfterKey_ = true;
    return *this;
}

JsonWriter& JsonWriter::text(std::string_view value) {
    beginValue();
    appendQuoted(out_, value);
    return *this;
}

JsonWriter& JsonWriter::number(std::uint64_t value) {
    beginValue();
    out_ += std::to_string(value);
    return *this;
}

JsonWriter& JsonWriter::number(std::string_view spelled) {
    beginValue();
    out_ += spelled;
    return *this;
}

JsonWriter& JsonWriter::boolean(bool value) {
    beginValue();
    out_ += value ? "true" : "false";
    return *this;
}

JsonWriter& JsonWriter::null() {
    beginValue();
    out_ += "null";
    return *this;
}

JsonWriter& JsonWriter::begin(char open, char close) {
    beginValue();
    out_ += open;
    open_.push_back({close, true});
    return *this;
}

JsonWriter& JsonWriter::end(char close) {
    assert(!open_.empty() && open_.back().close == close && !isAfterKey_);
    const bool wasEmpty = open_.back().isEmpty;
    open_.pop_back();
    if (!wasEmpty) breakLine();
    out_ += close;
    return *this;
}

void JsonWriter::beginItem() {
    if (open_.empty()) return;
    if (!open_.back().isEmpty) out_ += ',';
    open_.back().isEmpty = false;
    breakLine();
}

void JsonWriter::beginValue() {
    assert(open_.empty() || (open_.back().close == '}') == isAfterKey_);
    if (!isAfterKey_) beginItem();
    isAfterKey_ = false;
}

void JsonWriter::breakLine() {
    if (style_ == Style::compact) return;
    out_ += '\n';
    out_.append(2 * open_.size(), ' ');
}

}  // namespace QosAgent
