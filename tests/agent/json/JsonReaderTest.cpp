#include "tests/agent/json/JsonReaderTest.h"

#include <vector>

namespace QosAgent {
namespace {

using std::string_literals::operator""s;

void listPlaces(JsonValue value, std::vector<std::size_t>& places) {
    places.push_back(value.offset());
    for (const JsonValue element : value.elements())
        listPlaces(element, places);
    for (const JsonMember& member : value.members()) {
        places.push_back(member.keyOffset);
        listPlaces(member.value, places);
    }
}

/// Where the keys and values of `text` begin, in source order.
std::vector<std::size_t> placesIn(std::string_view text) {
    std::vector<std::size_t> places;
    const Json tree = treeOf(text);
    listPlaces(tree.root(), places);
    return places;
}

/// Removes each `^` and returns where it stood: before a key or value that begins there.
std::vector<std::size_t> takeMarks(std::string& text) {
    std::vector<std::size_t> marks;
    for (std::size_t at = text.find('^'); at != std::string::npos; at = text.find('^', at)) {
        text.erase(at, 1);
        marks.push_back(at);
    }
    return marks;
}

class JsonReaderOffsetTest : public testing::TestWithParam<const char*> {};

TEST_P(JsonReaderOffsetTest, placesEveryKeyAndValue) {
    std::string text = GetParam();
    const std::vector<std::size_t> marks = takeMarks(text);
    EXPECT_EQ(placesIn(text), marks) << text;
}

INSTANTIATE_TEST_SUITE_P(
    Shapes, JsonReaderOffsetTest,
    testing::Values(
        "^null", "^true", "^false", "^0", "^-12.5e+3", "^\"\"", "^[]", "^{}", " \t\r\n^1 \n",
        "\n^\"a\"\n", "^[^1,^2]", "^[ ^1 , ^2 ]", "^[^1\n,\t^2\r]", "^[^12,^-3.0E-1,^4]",
        "^[^1,^\"a\",^2,^true,^3,^[^4],^5,^{},^6]", "^[^[^[^1],^2],^3]", "^[^[],^[],^{},^{}]",
        R"(^{^"a":^1})", R"(^{^"a":^1,^"b":^2})", R"(^{ ^"a" : ^1 , ^"b" : ^{ } })",
        "^{\n  ^\"a\"\n:\n^12\n,\n^\"b\"\n:\n^[\n]\n}\n", R"(^{^"a":^{^"b":^{^"c":^3}},^"d":^4})",
        R"(^{^"a":^[^{^"b":^0},^{^"b":^1}],^"c":^null})", R"(^[^"\"",^"\\",^"a\\\"b",^7])",
        R"(^{^"a,b:c]}":^"{[:,]}",^"\u0022,\u003a":^"\ud83d\ude00",^"z":^false})",
        "^{^\"\xc3\xa4\xe2\x82\xac\":^\"\xf0\x9f\x98\x80\",^\"b\":^1}",
        "^[^true,^false,^null , ^true ]", "^[^0\n]", "^{^\"a\":^0\n}", "^[^1.5,^1e5,^\"\"]"));

TEST(JsonReaderTest, decodesEscapes) {
    EXPECT_EQ(decoded(R"("\"\\\/\b\f\n\r\t")"), "\"\\/\b\f\n\r\t");
    EXPECT_EQ(decoded(R"("\u0041\u00e4\u20AC\ud83d\uDE00")"),
              "A\xc3\xa4\xe2\x82\xac\xf0\x9f\x98\x80");
    EXPECT_EQ(decoded(R"("a\u0000b")"), "a\0b"s);
}

TEST(JsonReaderTest, keepsNulInAKeyLikeAnyCharacter) {
    const Json tree = treeOf(R"({"a\u0000b": 1, "a": 2, "a\u0000c": 3})");
    EXPECT_EQ(tree.root().find("a\0c"s)->value.text(), "3");
    EXPECT_EQ(tree.root().find("a")->value.text(), "2");
}

TEST(JsonReaderTest, keepsAByteOrderMarkWithinAString) {
    EXPECT_EQ(decoded("\"\xef\xbb\xbf\""), "\xef\xbb\xbf");
}

TEST(JsonReaderTest, takesTheOutermostCharactersOfEachLength) {
    for (const char* text :
         {"\x7f", "\xc2\x80", "\xdf\xbf", "\xe0\xa0\x80", "\xed\x9f\xbf", "\xee\x80\x80",
          "\xef\xbf\xbf", "\xf0\x90\x80\x80", "\xf4\x8f\xbf\xbf"}) {
        EXPECT_EQ(decoded('"' + std::string(text) + '"'), text);
    }
}

TEST(JsonReaderTest, keepsTheSpellingOfNumbers) {
    for (const char* text : {"0", "-0", "1.0", "1E5", "1e-005", "123456789012345678901234567890",
                             "-9223372036854775809", "1e308", "0.1000"}) {
        EXPECT_EQ(decoded(text), text);
        EXPECT_EQ(treeOf('[' + std::string(text) + "]").root().size(), 1u);
    }
}

}  // namespace
}  // namespace QosAgent
