#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace QosAgent {

/// Appends `text` as a JSON string with quotes. Escapes only what JSON requires: `"`, `\` and
/// U+0000 to U+001F. Copies all other bytes unchanged, even if they are not UTF-8.
void appendQuoted(std::string& out, std::string_view text);

/// Writes one JSON value, piece by piece, to the end of a string that outlives the writer. Indented
/// style puts each member and element on its own line, two spaces a level, and no line end last.
///
///     JsonWriter(line).beginObject().key("dscp").number(46).endObject();  // {"dscp":46}
///
/// Preconditions: calls nest as JSON does, a key before each value of an object and nowhere else.
class JsonWriter {
public:
    enum class Style { compact, indented };

    explicit JsonWriter(std::string& out, Style style = Style::compact);

    JsonWriter& beginObject() { return begin('{', '}'); }
    JsonWriter& endObject() { return end('}'); }
    JsonWriter& beginArray() { return begin('[', ']'); }
    JsonWriter& endArray() { return end(']'); }

    /// The caller must use different names within an object; the writer does not check this.
    JsonWriter& key(std::string_view name);
    JsonWriter& text(std::string_view value);
    JsonWriter& number(std::uint64_t value);
    /// Writes a number with this spelling; the writer does not check it.
    JsonWriter& number(std::string_view spelled);
    JsonWriter& boolean(bool value);
    JsonWriter& null();

private:
    struct Container {
        char close;
        bool isEmpty;
    };

    JsonWriter& begin(char open, char close);
    JsonWriter& end(char close);
    void beginItem();
    void beginValue();
    void breakLine();

    std::string& out_;
    Style style_;
    std::vector<Container> open_;
    bool isAfterKey_ = false;
};

}  // namespace QosAgent
