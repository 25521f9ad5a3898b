#include <gtest/gtest.h>

#include <regex>

#include "tests/agent/support/Program.h"

namespace QosAgent {
namespace {

constexpr std::size_t kMostDocumentBytes = std::size_t{256} << 20;
constexpr std::size_t kMostLineBytes = std::size_t{256} << 20;
constexpr std::size_t kMostTextBytes = std::size_t{64} << 10;
constexpr std::size_t kMostLevels = 64;

/// Input that somebody made wrong, by mistake or on purpose.
class BadInputTest : public ProgramTest {
protected:
    /// The text stands in a document of its own, and is refused with this.
    void expectRefused(const std::string& text, const std::string& fault) {
        const std::string document = file("bad.json", text);
        EXPECT_EQ(run({document}), (Ended{2, "", document + fault + '\n'})) << text;
    }
    Ended apply(const std::string& lines) {
        return run({"--output", "none", "--keep-going", "--trace-file", path("t"), "-"}, lines);
    }
    static std::string echo(const std::string& text) { return R"({"echo":")" + text + "\"}"; }
    /// An update with a value of so many levels of arrays, in a line of one more.
    static std::string nested(std::size_t levels) {
        return R"({"update":"qos/status","value":)" + std::string(levels, '[') +
               std::string(levels, ']') + "}\n";
    }
};

TEST_F(BadInputTest, isADocumentOfMoreThan256Mebibytes) {
    const std::string document = file("big.json", "{}");
    // No disk holds what follows; the first byte of it is wrong.
    std::filesystem::resize_file(document, kMostDocumentBytes);
    EXPECT_EQ(run({document}), (Ended{2, "",
                                      document + ":1:3: expected the end of the text, "
                                                 "found byte 0x00\n"}));
    std::filesystem::resize_file(document, kMostDocumentBytes + 1);
    EXPECT_EQ(run({document}),
              (Ended{2, "", document + ":1:1: text longer than 268435456 bytes\n"}));
}

TEST_F(BadInputTest, isALineOfMoreThan256Mebibytes) {
    const std::string stream = file("lines.jsonl", "");
    const auto zeros = [&](std::size_t count) {
        std::filesystem::resize_file(stream, std::filesystem::file_size(stream) + count);
        std::ofstream(stream, std::ios::app) << '\n';
    };
    zeros(kMostLineBytes + 1);
    std::ofstream(stream, std::ios::app) << echo("a") << '\n';
    zeros(kMostLineBytes);
    EXPECT_EQ(run({"--output", "none", "--keep-going", "--trace-file", path("t"), stream}),
              (Ended{1, "# a\n",
                     stream + ":1:1: text longer than 268435456 bytes\n" + stream +
                         ":3:1: expected a value, found byte 0x00\n"}));
}

TEST_F(BadInputTest, isATextOfMoreThan64Kibibytes) {
    const std::string most(kMostTextBytes, 'x');
    EXPECT_EQ(apply(echo(most) + '\n' + echo(most + 'x')),
              (Ended{1, "# " + most + '\n', "-:2:9: string longer than 65536 bytes\n"}));
}

TEST_F(BadInputTest, isNestedDeeperThan64Levels) {
    EXPECT_EQ(apply(nested(kMostLevels - 1) + nested(kMostLevels)),
              (Ended{1, "",
                     "-:1:32: expected an object, found an array\n"
                     "-:2:95: nested deeper than 64 levels\n"}));
}

TEST_F(BadInputTest, isRefusedWithItsPlaceAndNothingOnStandardOutput) {
    expectRefused(std::string("{\"qos/status\":\0{}}", 17),
                  ":1:15: expected a value, found byte 0x00");
    expectRefused("{\"qos/status\":{},\n\"\xc3(\":{}}", ":2:1: the string is not UTF-8");
    expectRefused(R"({"qos/status":{},"qos\/status":{}})", R"(:1:18: duplicate key "qos/status")");
    const std::string group =
        R"({"qos/input/config/cli":{"forwardingGroupNameToTcMap":{"tc":{"g":)";
    const std::string place = ":1:" + std::to_string(group.size() + 1);
    expectRefused(group + "4294967296}}}}",
                  place + ": \"4294967296\" is out of range 0 to 4294967295");
    expectRefused(group + std::string(400, '9') + "}}}}", place + ": number out of range");
    expectRefused(group + "-1}}}}", place + ": expected plain decimal digits, found \"-1\"");
}

TEST_F(BadInputTest, makesNoLinesOfItsOwn) {
    const std::string name = R"(v\n{\"delete\":\"x\"}\r\u0000\u001b[2J\u007f)";
    const std::string cmap = "qos/status/cmapTypeStatus/mapQos/cmapStatus/" + name;
    const Ended ended =
        run({"--output", "none", "--follow", "--trace", "*/9", "--keep-going", "-"},
            R"({"update":")" + cmap + R"(","value":{"match":{"matchIpAccessGroup":")" + name +
                "\"}}}\n{\"delete\":\"" + cmap + "/x\"}\n{\"delete\":\"" + cmap + "\"}\n");
    const std::string state = R"("qos/openconfig/state/classifiers/classifier/)";
    const std::string shown = R"(v\n{\"delete\":\"x\"}\r\u0000\u001b[2J)"
                              "\x7f";
    EXPECT_EQ(ended.status, 1);
    EXPECT_EQ(ended.out, R"({"update":)" + state + shown + R"(/state","value":{"name":")" + shown +
                             R"(","type":"IPV4"}})" + "\n{\"delete\":" + state + shown + "\"}\n");
    const std::regex trace(R"(\d{4}-\d\d-\d\dT[^ ]*Z \w+/8 QosOpenConfig/\w+:\d+ [ -~]*)");
    const std::regex refused(R"(-:2:11: unknown member "x" in the path)");
    std::istringstream lines(ended.err);
    std::size_t refusals = 0;
    for (std::string line; std::getline(lines, line);) {
        const bool isRefusal = std::regex_match(line, refused);
        refusals += isRefusal ? 1 : 0;
        EXPECT_TRUE(isRefusal || std::regex_match(line, trace)) << line;
    }
    EXPECT_EQ(refusals, 1u);
}

TEST_F(BadInputTest, isShownEscapedToPeopleAndAsItIsToPrograms) {
    const std::string document = file(
        "d.json",
        "{\"qos/status\":{\"cmapTypeStatus\":{\"mapQos\":{\"cmapStatus\":{\"a\u009b2J\u202eb\":"
        "{\"match\":{\"matchIpAccessGroup\":\"\u202ec\"}}}}}}}");
    const Ended people = run({"--output", "table", "--machines", document});
    EXPECT_NE(people.out.find("a\\u009b2J\\u202eb  IPV4"), std::string::npos) << people;
    EXPECT_NE(people.out.find("cmapStatus: Qos::ClassMapStatus a\\u009b2J\\u202eb\n"),
              std::string::npos)
        << people;
    EXPECT_EQ(people.out.find("\u202e"), std::string::npos) << people;
    const Ended programs =
        run({"--output", "none", document, "-"},
            "{\"print\":\"state\"}\n{\"print\":\"machines\"}\n{\"delete\":\"a\u202e\"}\n");
    EXPECT_TRUE(programs.out.starts_with("{\"classifier\":{\"a\u009b2J\u202eb\":{\"state\""))
        << programs;
    EXPECT_NE(programs.out.find("\"name\":\"a\u009b2J\u202eb\""), std::string::npos) << programs;
    EXPECT_EQ(programs.out.find("\\u"), std::string::npos) << programs;
    EXPECT_EQ(programs.err, "-:3:11: no subtree is mounted at the path \"a\\u202e\"\n");
}

TEST_F(BadInputTest, isNamedOnOneLineWhateverItsFileIsCalled) {
    EXPECT_EQ(run({path("a\nb\x7f.json")}),
              (Ended{2, "", path("a\\u000ab\\u007f.json") + ": No such file or directory\n"}));
}

}  // namespace
}  // namespace QosAgent
