#include "tests/agent/json/JsonReaderTest.h"

namespace QosAgent {
namespace {

using std::string_literals::operator""s;
using ::testing::AllOf;
using ::testing::Each;
using ::testing::Ge;
using ::testing::Le;
using ::testing::Not;

TEST(JsonReaderFaultsTest, refusesATextWithoutAValue) {
    EXPECT_EQ(faultIn(""), (Fault{0, "expected a value, found the end of the text"}));
    EXPECT_EQ(faultIn({}), (Fault{0, "expected a value, found the end of the text"}));
    EXPECT_EQ(faultIn(" \n "), (Fault{3, "expected a value, found the end of the text"}));
}

TEST(JsonReaderFaultsTest, refusesAByteOrderMark) {
    EXPECT_EQ(faultIn("\xef\xbb\xbf{}"), (Fault{0, "byte order mark before the text"}));
    EXPECT_EQ(faultIn("\xef\xbb\xbf"), (Fault{0, "byte order mark before the text"}));
    EXPECT_EQ(faultIn("\xef\xbb"), (Fault{0, "expected a value, found byte 0xef"}));
    EXPECT_EQ(faultIn(" \xef\xbb\xbf{}"), (Fault{1, "expected a value, found byte 0xef"}));
    EXPECT_EQ(faultIn("\xff\xfe{\0}\0"s), (Fault{0, "expected a value, found byte 0xff"}));
}

TEST(JsonReaderFaultsTest, refusesWhatFollowsTheValue) {
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

TEST(JsonReaderFaultsTest, takesNulForNoEndOfTheText) {
    EXPECT_EQ(faultIn("{}\0"s), (Fault{2, "expected the end of the text, found byte 0x00"}));
    EXPECT_EQ(faultIn("{}\0{}"s), (Fault{2, "expected the end of the text, found byte 0x00"}));
    EXPECT_EQ(faultIn("12\0"s), (Fault{2, "expected the end of the text, found byte 0x00"}));
    EXPECT_EQ(faultIn("\0"s), (Fault{0, "expected a value, found byte 0x00"}));
    EXPECT_EQ(faultIn("[1\0]"s), (Fault{2, "expected ',' or ']', found byte 0x00"}));
}

TEST(JsonReaderFaultsTest, refusesAMisplacedToken) {
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

TEST(JsonReaderFaultsTest, refusesWhatOnlyRelaxedReadersTake) {
    EXPECT_EQ(faultIn("// a\n1"), (Fault{0, "expected a value, found '/'"}));
    EXPECT_EQ(faultIn("[1/**/]"), (Fault{2, "expected ',' or ']', found '/'"}));
    EXPECT_EQ(faultIn("NaN"), (Fault{0, "expected a value, found 'N'"}));
    EXPECT_EQ(faultIn("+1"), (Fault{0, "expected a value, found '+'"}));
    EXPECT_EQ(faultIn(".5"), (Fault{0, "expected a value, found '.'"}));
    EXPECT_EQ(faultIn("[\v1]"), (Fault{1, "expected a value or ']', found byte 0x0b"}));
    EXPECT_EQ(faultIn("[\xc2\xa0]"), (Fault{1, "expected a value or ']', found byte 0xc2"}));
}

TEST(JsonReaderFaultsTest, refusesAMisspelledWordAtTheWrongByte) {
    EXPECT_EQ(faultIn("[trux]"), (Fault{4, "expected 'true', found 'x'"}));
    EXPECT_EQ(faultIn("[1, fals]"), (Fault{8, "expected 'false', found ']'"}));
    EXPECT_EQ(faultIn("nulL"), (Fault{3, "expected 'null', found 'L'"}));
    EXPECT_EQ(faultIn("[nan]"), (Fault{2, "expected 'null', found 'a'"}));
    EXPECT_EQ(faultIn("t\nrue"), (Fault{1, "expected 'true', found byte 0x0a"}));
    EXPECT_EQ(faultIn("[truex]"), (Fault{5, "expected ',' or ']', found 'x'"}));
}

TEST(JsonReaderFaultsTest, refusesAMalformedNumberAtTheWrongByte) {
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

TEST(JsonReaderFaultsTest, refusesANumberOutOfRangeWhereItBegins) {
    EXPECT_EQ(faultIn("[1, 1e309]"), (Fault{4, "number out of range"}));
    EXPECT_EQ(faultIn("[1, -1e309 ]"), (Fault{4, "number out of range"}));
    EXPECT_EQ(faultIn(R"({"a": 1)" + std::string(400, '0') + "}"),
              (Fault{6, "number out of range"}));
}

TEST(JsonReaderFaultsTest, refusesABrokenEscapeAtTheWrongByte) {
    EXPECT_EQ(faultIn(R"(["a\x"])"), (Fault{4, "unknown escape in a string, found 'x'"}));
    EXPECT_EQ(faultIn("[\"\\\n\"]"), (Fault{3, "unknown escape in a string, found byte 0x0a"}));
    EXPECT_EQ(faultIn(R"(["\u12g4"])"),
              (Fault{6, R"(expected four hexadecimal digits after '\u', found 'g')"}));
    EXPECT_EQ(faultIn(R"({"\u123": 1})"),
              (Fault{7, R"(expected four hexadecimal digits after '\u', found '"')"}));
    EXPECT_EQ(faultIn(R"(["\ud83d\u12"])"),
              (Fault{12, R"(expected four hexadecimal digits after '\u', found '"')"}));
}

TEST(JsonReaderFaultsTest, refusesEveryRawControlCharacterInAString) {
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

TEST(JsonReaderFaultsTest, refusesALoneSurrogateWhereItsStringBegins) {
    for (const char* text : {R"("\ud800")", R"("\udbff")", R"("\udc00")", R"("\udfff")",
                             R"("a\ud800b")", R"("\ud800\n")", R"("\ud800\u0041")",
                             R"("\ud800\ud800")", R"("\udc00\ud800")", R"("\uD83D\uDE00\uDE00")"}) {
        EXPECT_EQ(faultIn("[1, "s + text + "]"), (Fault{4, "the string has a lone surrogate"}))
            << text;
        EXPECT_EQ(faultIn("{"s + text + ": 1}"), (Fault{1, "the string has a lone surrogate"}))
            << text;
    }
}

TEST(JsonReaderFaultsTest, refusesAStringThatIsNotUtf8WhereItBegins) {
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

TEST(JsonReaderFaultsTest, tellsTheReasonFromTheWordsOfTheText) {
    EXPECT_EQ(faultIn(R"(["UTF-8 - surrogate; control character\x"])").message,
              "unknown escape in a string, found 'x'");
}

TEST(JsonReaderFaultsTest, refusesATextThatEndsTooEarlyAtItsEnd) {
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

TEST(JsonReaderFaultsTest, refusesEveryTruncationOfADocument) {
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

TEST(JsonReaderFaultsTest, survivesAnyByteInAnyPlace) {
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

}  // namespace
}  // namespace QosAgent
