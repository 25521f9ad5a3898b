#include "agent/configuration/ModelPath.h"

#include <optional>
#include <utility>

#include "agent/json/Excerpt.h"

namespace QosAgent {
namespace {

constexpr std::string_view kPrefix = "openconfig-qos:";
constexpr std::size_t kHexDigits = 4;

void appendUtf8(std::string& text, unsigned character) {
    if (character < 0x80) {
        text += static_cast<char>(character);
    } else if (character < 0x800) {
        text += static_cast<char>(0xC0 | character >> 6);
        text += static_cast<char>(0x80 | (character & 0x3F));
    } else {
        text += static_cast<char>(0xE0 | character >> 12);
        text += static_cast<char>(0x80 | (character >> 6 & 0x3F));
        text += static_cast<char>(0x80 | (character & 0x3F));
    }
}

std::optional<unsigned> hexDigit(char digit) {
    if (digit >= '0' && digit <= '9') return static_cast<unsigned>(digit - '0');
    if (digit >= 'a' && digit <= 'f') return static_cast<unsigned>(digit - 'a' + 10);
    if (digit >= 'A' && digit <= 'F') return static_cast<unsigned>(digit - 'A' + 10);
    return {};
}

bool isSurrogate(unsigned character) {
    return character >= 0xD800 && character < 0xE000;
}

/// Goes through the text once, element by element.
class PathReader {
public:
    explicit PathReader(std::string_view text) : text_(text) {}

    std::variant<ModelPath, PathFault> read() {
        if (!takes('/')) return PathFault{0, "the path must begin with '/'"};
        if (text_.size() > 1 && text_.ends_with('/') && !isInKey()) --end_;
        while (!fault_ && at_ < end_) {
            readElement();
            if (!fault_ && at_ < end_ && !takes('/')) fail("expected '/' or '['");
        }
        if (fault_) return *std::move(fault_);
        return std::move(path_);
    }

private:
    /// The slash at the very end belongs to a key, which lacks its bracket.
    bool isInKey() const {
        const auto open = text_.rfind('[');
        return open != std::string_view::npos && text_.find(']', open) == std::string_view::npos;
    }
    bool takes(char c) {
        if (at_ >= end_ || text_[at_] != c) return false;
        ++at_;
        return true;
    }
    void fail(std::string message) {
        if (!fault_) fault_ = PathFault{at_, std::move(message) + " in the path"};
    }
    void readElement() {
        const std::size_t stop = std::min(text_.find_first_of("/[", at_), end_);
        const std::string_view name = localName(text_.substr(at_, stop - at_));
        if (name.empty()) return fail("an empty name");
        path_.push_back({std::string(name), {}});
        at_ = stop;
        while (!fault_ && takes('['))
            readKey(path_.back());
    }
    void readKey(PathElement& element) {
        const std::size_t equals = text_.find('=', at_);
        const std::size_t close = text_.find(']', at_);
        if (equals >= end_ || close < equals) return fail("expected '=' after the name of a key");
        PathElement::Key key{std::string(localName(text_.substr(at_, equals - at_))), {}};
        if (key.name.empty()) return fail("an empty name of a key");
        for (const PathElement::Key& other : element.keys)
            if (other.name == key.name) return fail("a second key " + excerpt(key.name));
        at_ = equals + 1;
        while (!fault_ && !takes(']')) {
            if (at_ >= end_) return fail("no ']' ends a key");
            readCharacter(key.value);
        }
        element.keys.push_back(std::move(key));
    }
    void readCharacter(std::string& value) {
        const char c = text_[at_++];
        if (c != '\\') {
            value += c;
            return;
        }
        const char escaped = at_ < end_ ? text_[at_++] : '\0';
        if (escaped == 'n')
            value += '\n';
        else if (escaped == 'r')
            value += '\r';
        else if (escaped == 'u' || escaped == 'U')
            readUnicode(value);
        else if (escaped == ']' || escaped == '\\' || escaped == '[' || escaped == '/' ||
                 escaped == '=')
            value += escaped;
        else
            fail("'\\' begins no escape");
    }
    void readUnicode(std::string& value) {
        unsigned character = 0;
        for (std::size_t i = 0; i < kHexDigits; ++i) {
            const auto digit = at_ < end_ ? hexDigit(text_[at_]) : std::nullopt;
            if (!digit) return fail("expected four hexadecimal digits");
            character = character << 4 | *digit;
            ++at_;
        }
        if (isSurrogate(character)) return fail("a lone surrogate");
        appendUtf8(value, character);
    }

    std::string_view text_;
    std::size_t at_ = 0;
    std::size_t end_ = text_.size();
    ModelPath path_;
    std::optional<PathFault> fault_;
};

void appendKeyValue(std::string& text, std::string_view value) {
    for (const char c : value) {
        if (c == '\n') {
            text += "\\n";
        } else if (c == '\r') {
            text += "\\r";
        } else {
            if (c == ']' || c == '\\') text += '\\';
            text += c;
        }
    }
}

}  // namespace

std::variant<ModelPath, PathFault> parseModelPath(std::string_view text) {
    return PathReader(text).read();
}

std::string textOf(const ModelPath& path) {
    if (path.empty()) return "/";
    std::string text;
    for (const PathElement& element : path) {
        text.append("/").append(element.name);
        for (const PathElement::Key& key : element.keys) {
            text.append("[").append(key.name).append("=");
            appendKeyValue(text, key.value);
            text += ']';
        }
    }
    return text;
}

std::string_view localName(std::string_view name) {
    return name.starts_with(kPrefix) ? name.substr(kPrefix.size()) : name;
}

}  // namespace QosAgent
