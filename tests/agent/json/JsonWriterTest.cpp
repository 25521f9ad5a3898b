#include <gtest/gtest.h>

#include "agent/json/JsonReader.h"
#include "agent/json/JsonWriter.h"

namespace QosAgent {
namespace {

using std::string_literals::operator""s;
using Style = JsonWriter::Style;

std::string asJson(std::string_view text) {
    std::string out;
    appendQuoted(out, text);
    return out;
}

/// What `write` makes of a writer in that style.
template <typename Write>
std::string written(Style style, Write write) {
    std::string out;
    JsonWriter writer(out, style);
    write(writer);
    return out;
}

void copy(JsonValue value, JsonWriter& writer) {
    switch (value.kind()) {
        case JsonKind::null:
            writer.null();
            return;
        case JsonKind::boolean:
            writer.boolean(value.boolean());
            return;
        case JsonKind::number:
            writer.number(value.plainNumber().value());
            return;
        case JsonKind::string:
            writer.text(value.text());
            return;
        case JsonKind::array:
            writer.beginArray();
            for (const JsonValue element : value.elements())
                copy(element, writer);
            writer.endArray();
            return;
        case JsonKind::object:
            writer.beginObject();
            for (const JsonMember& member : value.members()) {
                writer.key(member.key);
                copy(member.value, writer);
            }
            writer.endObject();
            return;
    }
}

std::string rewritten(std::string_view text, Style style) {
    const Json tree = std::get<Json>(parseJson(text));
    return written(style, [&tree](JsonWriter& writer) { copy(tree.root(), writer); });
}

TEST(JsonWriterTest, quotesPlainTextAsItIs) {
    EXPECT_EQ(asJson(""), R"("")");
    EXPECT_EQ(asJson("voice/1"), R"("voice/1")");
    EXPECT_EQ(asJson("\xc3\xa4 \xf0\x9f\x98\x80 \x7f \xe2\x80\xa8"),
              "\"\xc3\xa4 \xf0\x9f\x98\x80 \x7f \xe2\x80\xa8\"");
}

TEST(JsonWriterTest, escapesQuoteAndBackslash) {
    EXPECT_EQ(asJson(R"(a"b\c)"), R"("a\"b\\c")");
}

TEST(JsonWriterTest, escapesEveryControlCharacter) {
    std::string controls;
    for (char byte = 0; byte < 0x20; ++byte)
        controls += byte;
    EXPECT_EQ(asJson(controls),
              R"("\u0000\u0001\u0002\u0003\u0004\u0005\u0006\u0007\b\t\n\u000b\f\r\u000e\u000f)"
              R"(\u0010\u0011\u0012\u0013\u0014\u0015\u0016\u0017\u0018\u0019\u001a\u001b\u001c)"
              R"(\u001d\u001e\u001f")");
}

TEST(JsonWriterTest, escapesAtBothEndsOfTheText) {
    EXPECT_EQ(asJson("\na\0"s), R"("\na\u0000")");
}

TEST(JsonWriterTest, passesBytesThatAreNotUtf8) {
    EXPECT_EQ(asJson("\xff\xc3\""), "\"\xff\xc3\\\"\"");
}

TEST(JsonWriterTest, appendsToWhatIsThere) {
    std::string out = "line: ";
    JsonWriter(out).beginObject().key("dscp").number(46).endObject();
    EXPECT_EQ(out, R"(line: {"dscp":46})");
}

TEST(JsonWriterTest, writesEachKindOfValue) {
    const std::string out = written(Style::compact, [](JsonWriter& writer) {
        writer.beginArray().null().boolean(true).boolean(false).number(0).number(UINT64_MAX);
        writer.text("a\tb").beginArray().endArray().beginObject().endObject().endArray();
    });
    EXPECT_EQ(out, R"([null,true,false,0,18446744073709551615,"a\tb",[],{}])");
}

TEST(JsonWriterTest, writesAValueAloneWithoutLineEnds) {
    EXPECT_EQ(written(Style::indented, [](JsonWriter& writer) { writer.text("a"); }), R"("a")");
    EXPECT_EQ(written(Style::indented, [](JsonWriter& writer) { writer.number(7); }), "7");
}

TEST(JsonWriterTest, escapesKeys) {
    const std::string out = written(Style::compact, [](JsonWriter& writer) {
        writer.beginObject().key("a\"\n").null().endObject();
    });
    EXPECT_EQ(out, R"({"a\"\n":null})");
}

TEST(JsonWriterTest, writesEmptyContainersWithoutSpaceInBothStyles) {
    EXPECT_EQ(rewritten("{ }", Style::compact), "{}");
    EXPECT_EQ(rewritten("[ ]", Style::compact), "[]");
    EXPECT_EQ(rewritten("{ }", Style::indented), "{}");
    EXPECT_EQ(rewritten("[ ]", Style::indented), "[]");
}

TEST(JsonWriterTest, indentsEachItemByItsLevel) {
    EXPECT_EQ(rewritten(R"({"a":[1,{"b":null},[]],"c":{},"d":{"e":"f"}})", Style::indented),
              R"({
  "a": [
    1,
    {
      "b": null
    },
    []
  ],
  "c": {},
  "d": {
    "e": "f"
  }
})");
}

TEST(JsonWriterTest, roundTripsThroughTheReader) {
    const std::string compact =
        R"({"":[],"a\u0000\"\\":{"b":[[{}],true,null,18446744073709551615]},")"
        "\xf0\x9f\x98\x80\":[false,\"\x7f\\u001f\"]}";
    EXPECT_EQ(rewritten(compact, Style::compact), compact);
    EXPECT_EQ(rewritten(rewritten(compact, Style::indented), Style::compact), compact);
}

TEST(JsonWriterTest, roundTripsEveryCharacterOfOneByte) {
    std::string text;
    for (int byte = 0; byte < 0x80; ++byte)
        text += static_cast<char>(byte);
    const Json tree = std::get<Json>(parseJson(asJson(text)));
    EXPECT_EQ(tree.root().text(), text);
}

#ifndef NDEBUG
TEST(JsonWriterDeathTest, stopsAtCallsThatDoNotNest) {
    std::string out;
    EXPECT_DEATH(JsonWriter(out).beginArray().endObject(), "close == close");
    EXPECT_DEATH(JsonWriter(out).endArray(), "open_.empty");
    EXPECT_DEATH(JsonWriter(out).key("a"), "open_.empty");
    EXPECT_DEATH(JsonWriter(out).beginArray().key("a"), "close == '}'");
    EXPECT_DEATH(JsonWriter(out).beginObject().number(1), "isAfterKey_");
    EXPECT_DEATH(JsonWriter(out).beginObject().key("a").key("b"), "isAfterKey_");
    EXPECT_DEATH(JsonWriter(out).beginObject().key("a").endObject(), "isAfterKey_");
}
#endif

}  // namespace
}  // namespace QosAgent
