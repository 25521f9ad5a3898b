#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>
#include <vector>

#include "agent/json/JsonReader.h"

namespace QosAgent {

void PrintTo(const Fault& fault, std::ostream* out) {
    *out << fault.offset << ": " << fault.message;
}

namespace {

using std::string_literals::operator""s;
using ::testing::AllOf;
using ::testing::Each;
using ::testing::Ge;
using ::testing::Le;
using ::testing::Not;

const Fault kNoFault{~std::size_t{0}, "no fault"};

Fault faultOf(const JsonResult& result) {
    const Fault* fault = std::get_if<Fault>(&result);
    return fault ? *fault : kNoFault;
}

Fault faultIn(std::string_view text, const Limits& limits = {}) {
    return faultOf(parseJson(text, limits));
}

Json treeOf(std::string_view text) {
    return std::get<Json>(parseJson(text));
}

std::string decoded(std::string_view text) {
    return std::string(treeOf(text).root().text());
}

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

std::string nested(std::size_t depth) {
    return std::string(depth, '[') + std::string(depth, ']');
}

std::string quotedRun(std::size_t size) {
    return '"' + std::string(size, 'x') + '"';
}

std::string objectOf(std::size_t members) {
    std::string text = "{";
    for (std::size_t i = 0; i < members; ++i)
        text += "\"k" + std::to_string(i) + "\":0,";
    return text;
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

TEST(JsonReaderTest, refusesATextWithoutAValue) {
    EXPECT_EQ(faultIn(""), (Fault{0, "expected a value, found the end of the text"}));
    EXPECT_EQ(faultIn({}), (Fault{0, "expected a value, found the end of the text"}));
    EXPECT_EQ(faultIn(" \n "), (Fault{3, "expected a value, found the end of the text"}));
}

TEST(JsonReaderTest, refusesAByteOrderMark) {
    EXPECT_EQ(faultIn("\xef\xbb\xbf{}"), (Fault{0, "byte order mark before the text"}));
    EXPECT_EQ(faultIn("\xef\xbb\xbf"), (Fault{0, "byte order mark before the text"}));
    EXPECT_EQ(faultIn("\xef\xbb"), (Fault{0, "expected a value, found byte 0xef"}));
    EXPECT_EQ(faultIn(" \xef\xbb\xbf{}"), (Fault{1, "expected a value, found byte 0xef"}));
    EXPECT_EQ(faultIn("\xff\xfe{\0}\0"s), (Fault{0, "expected a value, found byte 0xff"}));
}

TEST(JsonReaderTest, refusesWhatFollowsTheValue) {
    EXPECT_EQ(faultIn("{} {}"), (Fault{3, "expected the end of the text, found '{'"}));
    EXPECT_EQ(faultIn("1 2"), (Fault{2, "expected the end of the text, found '2'"}));
    EXPECT_EQ(faultIn("[],"), (Fault{2, "expected the end of the text, found ','"}));
    EXPECT_EQ(faultIn("\"a\":1"), (Fault{3, "expected the end of the text, found ':'"}));
    EXPECT_EQ(faultIn("{}\n}"), (Fault{3, "expected the end of the text, found '}'"}));
    EXPECT_EQ(faultIn("[] trux"), (Fault{3, "expected the end of the text, found 't'"}));
    EXPECT_EQ(faultIn("{} \"\xff"), (Fault{3, "expected the end of the text, found '\"'"}));
    EXPECT_EQ(faultIn("truefalse"), (Fault{4, "expected the end of the text, found 'f'"}));
    EXPECT_EQ(faultIn("01"), (Fault{1, "expected the end of the text, found '1'"}));
    EXPECT_EQ(faultIn("{}\xff"), (Fault{2, "expected the end of the text, found byte 0xff"}));
}

TEST(JsonReaderTest, takesNulForNoEndOfTheText) {
    EXPECT_EQ(faultIn("{}\0"s), (Fault{2, "expected the end of the text, found byte 0x00"}));
    EXPECT_EQ(faultIn("{}\0{}"s), (Fault{2, "expected the end of the text, found byte 0x00"}));
    EXPECT_EQ(faultIn("12\0"s), (Fault{2, "expected the end of the text, found byte 0x00"}));
    EXPECT_EQ(faultIn("\0"s), (Fault{0, "expected a value, found byte 0x00"}));
    EXPECT_EQ(faultIn("[1\0]"s), (Fault{2, "expected ',' or ']', found byte 0x00"}));
}

TEST(JsonReaderTest, refusesAMisplacedToken) {
    EXPECT_EQ(faultIn("]"), (Fault{0, "expected a value, found ']'"}));
    EXPECT_EQ(faultIn("[,1]"), (Fault{1, "expected a value or ']', found ','"}));
    EXPECT_EQ(faultIn("[1,]"), (Fault{3, "expected a value, found ']'"}));
    EXPECT_EQ(faultIn("[1, ,2]"), (Fault{4, "expected a value, found ','"}));
    EXPECT_EQ(faultIn("[1 2]"), (Fault{3, "expected ',' or ']', found '2'"}));
    EXPECT_EQ(faultIn("[1:2]"), (Fault{2, "expected ',' or ']', found ':'"}));
    EXPECT_EQ(faultIn("[1}"), (Fault{2, "expected ',' or ']', found '}'"}));
    EXPECT_EQ(faultIn("[}"), (Fault{1, "expected a value or ']', found '}'"}));
    EXPECT_EQ(faultIn("{]"), (Fault{1, "expected a key or '}', found ']'"}));
    EXPECT_EQ(faultIn("{1:2}"), (Fault{1, "expected a key or '}', found '1'"}));
    EXPECT_EQ(faultIn("{trux}"), (Fault{1, "expected a key or '}', found 't'"}));
    EXPECT_EQ(faultIn("{'a':1}"), (Fault{1, "expected a key or '}', found '''"}));
    EXPECT_EQ(faultIn(R"({"a" 1})"), (Fault{5, "expected ':', found '1'"}));
    EXPECT_EQ(faultIn(R"({"a","b"})"), (Fault{4, "expected ':', found ','"}));
    EXPECT_EQ(faultIn(R"({"a"})"), (Fault{4, "expected ':', found '}'"}));
    EXPECT_EQ(faultIn(R"({"a"::1})"), (Fault{5, "expected a value, found ':'"}));
    EXPECT_EQ(faultIn(R"({"a":})"), (Fault{5, "expected a value, found '}'"}));
    EXPECT_EQ(faultIn(R"({"a":1:2})"), (Fault{6, "expected ',' or '}', found ':'"}));
    EXPECT_EQ(faultIn(R"({"a":1]})"), (Fault{6, "expected ',' or '}', found ']'"}));
    EXPECT_EQ(faultIn(R"({"a":1 "b":2})"), (Fault{7, "expected ',' or '}', found '\"'"}));
    EXPECT_EQ(faultIn(R"({"a":1,})"), (Fault{7, "expected a key, found '}'"}));
    EXPECT_EQ(faultIn(R"({"a":1,2})"), (Fault{7, "expected a key, found '2'"}));
}

TEST(JsonReaderTest, refusesWhatOnlyRelaxedReadersTake) {
    EXPECT_EQ(faultIn("// a\n1"), (Fault{0, "expected a value, found '/'"}));
    EXPECT_EQ(faultIn("[1/**/]"), (Fault{2, "expected ',' or ']', found '/'"}));
    EXPECT_EQ(faultIn("NaN"), (Fault{0, "expected a value, found 'N'"}));
    EXPECT_EQ(faultIn("+1"), (Fault{0, "expected a value, found '+'"}));
    EXPECT_EQ(faultIn(".5"), (Fault{0, "expected a value, found '.'"}));
    EXPECT_EQ(faultIn("[\v1]"), (Fault{1, "expected a value or ']', found byte 0x0b"}));
    EXPECT_EQ(faultIn("[\xc2\xa0]"), (Fault{1, "expected a value or ']', found byte 0xc2"}));
}

TEST(JsonReaderTest, refusesAMisspelledWordAtTheWrongByte) {
    EXPECT_EQ(faultIn("[trux]"), (Fault{4, "expected 'true', found 'x'"}));
    EXPECT_EQ(faultIn("[1, fals]"), (Fault{8, "expected 'false', found ']'"}));
    EXPECT_EQ(faultIn("nulL"), (Fault{3, "expected 'null', found 'L'"}));
    EXPECT_EQ(faultIn("[nan]"), (Fault{2, "expected 'null', found 'a'"}));
    EXPECT_EQ(faultIn("t\nrue"), (Fault{1, "expected 'true', found byte 0x0a"}));
    EXPECT_EQ(faultIn("[truex]"), (Fault{5, "expected ',' or ']', found 'x'"}));
}

TEST(JsonReaderTest, refusesAMalformedNumberAtTheWrongByte) {
    EXPECT_EQ(faultIn("[-]"), (Fault{2, "expected a digit in a number, found ']'"}));
    EXPECT_EQ(faultIn("[1.]"), (Fault{3, "expected a digit in a number, found ']'"}));
    EXPECT_EQ(faultIn("[1.e1]"), (Fault{3, "expected a digit in a number, found 'e'"}));
    EXPECT_EQ(faultIn("[1ex]"), (Fault{3, "expected a digit in a number, found 'x'"}));
    EXPECT_EQ(faultIn("[1e+-2]"), (Fault{4, "expected a digit in a number, found '-'"}));
    EXPECT_EQ(faultIn("[01]"), (Fault{2, "expected ',' or ']', found '1'"}));
    EXPECT_EQ(faultIn("[-01]"), (Fault{3, "expected ',' or ']', found '1'"}));
    EXPECT_EQ(faultIn("[1-2]"), (Fault{2, "expected ',' or ']', found '-'"}));
    EXPECT_EQ(faultIn("[1.2.3]"), (Fault{4, "expected ',' or ']', found '.'"}));
    EXPECT_EQ(faultIn("[0x1]"), (Fault{2, "expected ',' or ']', found 'x'"}));
}

TEST(JsonReaderTest, refusesANumberOutOfRangeWhereItBegins) {
    EXPECT_EQ(faultIn("[1, 1e309]"), (Fault{4, "number out of range"}));
    EXPECT_EQ(faultIn("[1, -1e309 ]"), (Fault{4, "number out of range"}));
    EXPECT_EQ(faultIn(R"({"a": 1)" + std::string(400, '0') + "}"),
              (Fault{6, "number out of range"}));
}

TEST(JsonReaderTest, refusesABrokenEscapeAtTheWrongByte) {
    EXPECT_EQ(faultIn(R"(["a\x"])"), (Fault{4, "unknown escape in a string, found 'x'"}));
    EXPECT_EQ(faultIn("[\"\\\n\"]"), (Fault{3, "unknown escape in a string, found byte 0x0a"}));
    EXPECT_EQ(faultIn(R"(["\u12g4"])"),
              (Fault{6, R"(expected four hexadecimal digits after '\u', found 'g')"}));
    EXPECT_EQ(faultIn(R"({"\u123": 1})"),
              (Fault{7, R"(expected four hexadecimal digits after '\u', found '"')"}));
    EXPECT_EQ(faultIn(R"(["\ud83d\u12"])"),
              (Fault{12, R"(expected four hexadecimal digits after '\u', found '"')"}));
}

TEST(JsonReaderTest, refusesEveryRawControlCharacterInAString) {
    for (char byte = 0; byte < 0x20; ++byte) {
        const Fault fault = faultIn("[\"a"s + byte + "\"]");
        EXPECT_EQ(fault.offset, 3u);
        EXPECT_THAT(
            fault.message,
            testing::StartsWith("a control character in a string must be escaped, found byte 0x"));
    }
    EXPECT_EQ(faultIn("{\"a\n\": 1}"),
              (Fault{3, "a control character in a string must be escaped, found byte 0x0a"}));
}

TEST(JsonReaderTest, refusesALoneSurrogateWhereItsStringBegins) {
    for (const char* text : {R"("\ud800")", R"("\udbff")", R"("\udc00")", R"("\udfff")",
                             R"("a\ud800b")", R"("\ud800\n")", R"("\ud800\u0041")",
                             R"("\ud800\ud800")", R"("\udc00\ud800")", R"("\uD83D\uDE00\uDE00")"}) {
        EXPECT_EQ(faultIn("[1, "s + text + "]"), (Fault{4, "the string has a lone surrogate"}))
            << text;
        EXPECT_EQ(faultIn("{"s + text + ": 1}"), (Fault{1, "the string has a lone surrogate"}))
            << text;
    }
}

TEST(JsonReaderTest, refusesAStringThatIsNotUtf8WhereItBegins) {
    for (const char* bytes :
         {"\x80", "\xbf", "\xc0\x80", "\xc1\xbf", "\xc2", "\xc2\xc2", "\xe0\x80\x80",
          "\xe0\x9f\xbf", "\xe2\x82", "\xed\xa0\x80", "\xed\xbf\xbf", "\xf0\x80\x80\x80",
          "\xf0\x8f\xbf\xbf", "\xf0\x9f\x98", "\xf4\x90\x80\x80", "\xf5\x80\x80\x80", "\xfe",
          "\xff"}) {
        const std::string string = "\"ab"s + bytes + "\"";
        EXPECT_EQ(faultIn("[1, " + string + "]"), (Fault{4, "the string is not UTF-8"})) << string;
        EXPECT_EQ(faultIn("{" + string + ": 1}"), (Fault{1, "the string is not UTF-8"})) << string;
    }
}

TEST(JsonReaderTest, tellsTheReasonFromTheWordsOfTheText) {
    EXPECT_EQ(faultIn(R"(["UTF-8 - surrogate; control character\x"])").message,
              "unknown escape in a string, found 'x'");
}

TEST(JsonReaderTest, refusesATextThatEndsTooEarlyAtItsEnd) {
    EXPECT_EQ(faultIn("["), (Fault{1, "expected a value or ']', found the end of the text"}));
    EXPECT_EQ(faultIn("[1, "), (Fault{4, "expected a value, found the end of the text"}));
    EXPECT_EQ(faultIn("[1"), (Fault{2, "expected ',' or ']', found the end of the text"}));
    EXPECT_EQ(faultIn("{\n"), (Fault{2, "expected a key or '}', found the end of the text"}));
    EXPECT_EQ(faultIn(R"({"a")"), (Fault{4, "expected ':', found the end of the text"}));
    EXPECT_EQ(faultIn(R"({"a":)"), (Fault{5, "expected a value, found the end of the text"}));
    EXPECT_EQ(faultIn(R"({"a":1)"), (Fault{6, "expected ',' or '}', found the end of the text"}));
    EXPECT_EQ(faultIn(R"({"a":1,)"), (Fault{7, "expected a key, found the end of the text"}));
    EXPECT_EQ(faultIn("tru"), (Fault{3, "expected 'true', found the end of the text"}));
    EXPECT_EQ(faultIn("[-"), (Fault{2, "expected a digit in a number, found the end of the text"}));
    for (const char* text :
         {R"("a)", R"("a\)", R"("a\u0)", R"("a\ud800)", R"("a\ud800\)", "\"a\xe2\x82"}) {
        EXPECT_EQ(faultIn(text),
                  (Fault{std::string_view(text).size(), "the text ends within a string"}));
    }
}

TEST(JsonReaderTest, refusesEveryTruncationOfADocument) {
    const std::string text =
        "{\"a\\u00e4\\ud83d\\ude00\": [1, -2.5e+3, true, false, null, \"\xe2\x82\xac\\n\"],\n"
        " \"b\": {\"c\": [], \"d\": {}, \"e\": [[{\"f\": \"g\"}]]}}";
    ASSERT_EQ(faultIn(text), kNoFault);
    for (std::size_t size = 0; size < text.size(); ++size) {
        const Fault fault = faultIn(std::string_view(text).substr(0, size));
        EXPECT_EQ(fault.offset, size);
        EXPECT_THAT(fault.message, testing::AnyOf(testing::HasSubstr("the end of the text"),
                                                  testing::HasSubstr("the text ends")));
    }
}

TEST(JsonReaderTest, survivesAnyByteInAnyPlace) {
    const std::string text = R"({"a\u00e4\ud83d\ude00":[1,-2.5e+3,true,null,"b"],"c":{"d":[]}})";
    for (std::size_t at = 0; at < text.size(); ++at) {
        for (int byte = 0; byte < 256; ++byte) {
            std::string changed = text;
            changed[at] = static_cast<char>(byte);
            const Fault fault = faultIn(changed);
            if (fault == kNoFault) continue;
            EXPECT_LE(fault.offset, text.size());
            EXPECT_THAT(fault.message, Each(AllOf(Ge(' '), Le('~'))));
            EXPECT_THAT(fault.message, Not(testing::HasSubstr("json.exception")));
        }
    }
}

TEST(JsonReaderTest, refusesADuplicateKeyAtTheSecond) {
    EXPECT_EQ(faultIn(R"({"a": 1, "b": 2, "a": 3})"), (Fault{17, R"(duplicate key "a")"}));
    EXPECT_EQ(faultIn(R"([{"b": {"a": {"a": 1}, "c": 2}, "b": 3}])"),
              (Fault{32, R"(duplicate key "b")"}));
    EXPECT_EQ(faultIn(R"({"a": [{"": 1,"": 2}]})"), (Fault{14, R"(duplicate key "")"}));
}

TEST(JsonReaderTest, comparesKeysDecoded) {
    EXPECT_EQ(faultIn(R"({"A": 1, "\u0041": 2})"), (Fault{9, R"(duplicate key "A")"}));
    EXPECT_EQ(faultIn(R"({"a\u0000": 1, "a": 2})"), kNoFault);
    EXPECT_EQ(faultIn("{\"\xc3\xa4\": 1, \"a\xcc\x88\": 2}"), kNoFault);
}

TEST(JsonReaderTest, allowsOneKeyInSeveralObjects) {
    EXPECT_EQ(faultIn(R"([{"a": {"a": 1}, "b": {"a": 2}}, {"a": 3}])"), kNoFault);
}

TEST(JsonReaderTest, reportsTheFirstOfSeveralDuplicates) {
    EXPECT_EQ(faultIn(R"({"b": 1, "a": 2, "b": 3, "a": 4, "b": 5})"),
              (Fault{17, R"(duplicate key "b")"}));
    EXPECT_EQ(faultIn(R"({"a": 1, "a": {"b": 1, "b": 2}})"), (Fault{9, R"(duplicate key "a")"}));
    EXPECT_EQ(faultIn(R"({"a": {"b": 1, "b": 2}, "a": 1})"), (Fault{15, R"(duplicate key "b")"}));
}

TEST(JsonReaderTest, reportsADuplicateRatherThanALaterFault) {
    EXPECT_EQ(faultIn(R"({"a": 1, "a")"), (Fault{9, R"(duplicate key "a")"}));
    EXPECT_EQ(faultIn(R"({"a": 1, "a": 2, "c": [x)"), (Fault{9, R"(duplicate key "a")"}));
    EXPECT_EQ(faultIn(R"([{"a": 1, "a": 2, "c": [{"d": )"), (Fault{10, R"(duplicate key "a")"}));
    EXPECT_EQ(faultIn(R"({"a": 1, "b": x, "a": 2})"), (Fault{14, "expected a value, found 'x'"}));
}

TEST(JsonReaderTest, quotesADuplicateKeyOnOneShortLine) {
    EXPECT_EQ(faultIn(R"({"\n\u001b": 1, "\n\u001b": 2})"),
              (Fault{16, R"(duplicate key "\n\u001b")"}));
    const std::string key = quotedRun(1000);
    EXPECT_EQ(faultIn("{" + key + ":1," + key + ":2}").message,
              "duplicate key \"" + std::string(60, 'x') + "\"...");
}

TEST(JsonReaderTest, findsADuplicateAmongManyKeys) {
    const std::string many = objectOf(100'000);
    EXPECT_EQ(faultIn(many + R"("k0":1})"), (Fault{many.size(), R"(duplicate key "k0")"}));
    EXPECT_EQ(faultIn(many + R"("k99999":1})"), (Fault{many.size(), R"(duplicate key "k99999")"}));
}

TEST(JsonReaderTest, takesAnObjectOfManyKeys) {
    const std::string text = objectOf(100'000) + R"("last":1})";
    const Json tree = treeOf(text);
    EXPECT_EQ(tree.root().size(), 100'001u);
    EXPECT_EQ(tree.root().find("last")->keyOffset, text.size() - 9);
}

TEST(JsonReaderTest, takes64LevelsAndNoMore) {
    EXPECT_EQ(faultIn(nested(64)), kNoFault);
    EXPECT_EQ(faultIn(nested(65)), (Fault{64, "nested deeper than 64 levels"}));
    EXPECT_EQ(faultIn("[" + nested(63) + ", " + nested(64) + "]"),
              (Fault{129 + 63, "nested deeper than 64 levels"}));
}

TEST(JsonReaderTest, countsObjectsAndArraysAlikeAsLevels) {
    const Limits limits{.depth = 2};
    EXPECT_EQ(faultIn(R"({"a": [1], "b": {}})", limits), kNoFault);
    EXPECT_EQ(faultIn(R"({"a": [{}]})", limits), (Fault{7, "nested deeper than 2 levels"}));
    EXPECT_EQ(faultIn(R"([{"a": []}])", limits), (Fault{7, "nested deeper than 2 levels"}));
}

TEST(JsonReaderTest, withstandsDeepNesting) {
    EXPECT_EQ(faultIn(std::string(1'000'000, '[')), (Fault{64, "nested deeper than 64 levels"}));
}

TEST(JsonReaderTest, takesTextsOf64KiBAndNoMore) {
    EXPECT_EQ(decoded(quotedRun(65'536)).size(), 65'536u);
    EXPECT_EQ(faultIn("{" + quotedRun(65'536) + ": 1}"), kNoFault);
    EXPECT_EQ(faultIn("[1, " + quotedRun(65'537) + "]"),
              (Fault{4, "string longer than 65536 bytes"}));
    EXPECT_EQ(faultIn("{ " + quotedRun(65'537) + ": 1}"),
              (Fault{2, "key longer than 65536 bytes"}));
}

TEST(JsonReaderTest, measuresTextsDecoded) {
    const Limits limits{.textBytes = 2};
    EXPECT_EQ(faultIn(R"(["\u0041\n", "\u00e4"])", limits), kNoFault);
    EXPECT_EQ(faultIn(R"(["\u20ac"])", limits), (Fault{1, "string longer than 2 bytes"}));
    EXPECT_EQ(faultIn("12345", limits), kNoFault);
}

TEST(JsonReaderTest, takesADocumentUpToItsLimitAndNoMore) {
    const Limits limits{.documentBytes = 5, .lineBytes = 3};
    EXPECT_EQ(faultIn("[1,2]", limits), kNoFault);
    EXPECT_EQ(faultIn("[1,2] ", limits), (Fault{0, "text longer than 5 bytes"}));
}

TEST(JsonReaderTest, takesALineUpToItsLimitAndNoMore) {
    const Limits limits{.documentBytes = 3, .lineBytes = 5};
    EXPECT_EQ(faultOf(parseJsonLine("[1,2]", limits)), kNoFault);
    EXPECT_EQ(faultOf(parseJsonLine("[1,2] ", limits)), (Fault{0, "text longer than 5 bytes"}));
}

TEST(JsonReaderTest, takesLinesAsLongAsDocumentsByDefault) {
    EXPECT_EQ(Limits{}.lineBytes, std::size_t{256} << 20);
    EXPECT_EQ(Limits{}.lineBytes, Limits{}.documentBytes);
}

TEST(JsonReaderTest, refusesDocumentsOfMoreThan256MebibytesByDefault) {
    EXPECT_EQ(Limits{}.documentBytes, std::size_t{256} << 20);
    const std::string text((std::size_t{256} << 20) + 1, ' ');
    EXPECT_EQ(faultIn(text), (Fault{0, "text longer than 268435456 bytes"}));
}

}  // namespace
}  // namespace QosAgent
