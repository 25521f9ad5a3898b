#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <regex>

#include "tests/agent/support/Program.h"
#include "tests/agent/support/PseudoTerminal.h"

namespace QosAgent {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

const char* const kDocument = R"({"qos/status":{"cmapTypeStatus":{"mapQos":{"cmapStatus":{
  "voice-of-the-north":{"match":{"matchIpv6AccessGroup":"voice6"}}}}}}})";

/// Of the documents above, where names have all the room they want.
const char* const kTable =
    "CLASSIFIER          TYPE  TERM  MATCH  TARGET GROUP\n"
    "voice-of-the-north  IPV6  -     -      -\n";

class TerminalTest : public ProgramTest {
protected:
    TerminalTest() { isColourful(); }
    ~TerminalTest() override { ::unsetenv("NO_COLOR"); }

    static void isColourful() {
        ::setenv("TERM", "xterm", 1);
        ::unsetenv("NO_COLOR");
    }
    static void isPlain() { ::setenv("NO_COLOR", "1", 1); }
    static void isDumb() { ::setenv("TERM", "dumb", 1); }

    std::string document() { return file("d.json", kDocument); }
    /// What the program writes to a terminal on its standard output.
    std::string shown(const std::vector<std::string>& arguments, unsigned short columns = 80,
                      const std::string& input = "") {
        PseudoTerminal terminal(columns);
        outFileIs(terminal.file());
        EXPECT_EQ(run(arguments, input).status, 0);
        return terminal.text();
    }
    /// What the program writes to a terminal on its standard error.
    std::string complained(const std::vector<std::string>& arguments,
                           const std::string& input = "") {
        PseudoTerminal terminal(80);
        errFileIs(terminal.file());
        run(arguments, input);
        return terminal.text();
    }
};

TEST_F(TerminalTest, getsATableByDefault) {
    isPlain();
    EXPECT_EQ(shown({document()}), kTable);
}

TEST_F(TerminalTest, showsTheTablesHeadBold) {
    const std::string table = kTable;
    const std::size_t headEnd = table.find('\n');
    EXPECT_EQ(shown({document()}),
              "\033[1m" + table.substr(0, headEnd) + "\033[0m" + table.substr(headEnd));
}

TEST_F(TerminalTest, hasNoColourWhenItIsDumb) {
    isDumb();
    EXPECT_EQ(shown({document()}), kTable);
}

TEST_F(TerminalTest, foldsNamesThatItHasNoRoomFor) {
    isPlain();
    EXPECT_EQ(shown({document()}, 44),
              "CLASSIFIER   TYPE  TERM  MATCH  TARGET GROUP\n"
              "voice-of-    IPV6  -     -      -\n"
              "the-north\n");
}

TEST_F(TerminalTest, getsFollowedChangesAsTextByDefault) {
    EXPECT_TRUE(std::regex_match(
        shown({"--output", "none", "--follow", document()}),
        std::regex(R"(\d\d:\d\d:\d\d\.\d{3}Z voice-of-the-north: absent -> IPV6\n)")));
    EXPECT_THAT(shown({"--output", "none", "--follow=json", document()}),
                HasSubstr(R"({"update":")"));
}

TEST_F(TerminalTest, seesNoColourInWhatProgramsRead) {
    for (const char* format : {"openconfig", "entities", "none"})
        EXPECT_THAT(shown({"--output", format, "--follow", document(), "-"}, 20,
                          "{\"print\":\"machines\"}\n{\"echo\":\"a\"}"),
                    Not(HasSubstr("\033")));
}

TEST_F(TerminalTest, seesNoColourInWhatGoesElsewhere) {
    const std::string bad = file("bad.json", "{");
    PseudoTerminal terminal(80);
    outFileIs(terminal.file());
    EXPECT_EQ(run({bad}).err, bad + ":1:2: expected a key or '}', found the end of the text\n");
    errFileIs(terminal.file());
    outFileIs(path("out"));
    EXPECT_EQ(run({"--output", "table", document()}).out, kTable);
}

TEST_F(TerminalTest, showsWhereARefusalIsInRed) {
    const std::string bad = file("bad.json", "{");
    EXPECT_EQ(complained({bad}), "\033[1;31m" + bad +
                                     ":1:2:\033[0m expected a key or '}', "
                                     "found the end of the text\n");
    isPlain();
    EXPECT_EQ(complained({bad}), bad + ":1:2: expected a key or '}', found the end of the text\n");
}

TEST_F(TerminalTest, showsThatALineIsAWarning) {
    EXPECT_EQ(complained({"-"}, R"({"openconfig":{"x:y":1}})"),
              "\033[1m-:1:16:\033[0m \033[1;35mwarning:\033[0m passed over: x:y\n");
}

TEST_F(TerminalTest, seesNoColourInTraceLines) {
    EXPECT_THAT(complained({"--trace", "*/9", document()}), Not(HasSubstr("\033")));
}

/// The document comes through a pipe, as slowly as a test wants.
class SlowLoadTest : public TerminalTest {
protected:
    SlowLoadTest() : slow(path("slow.json")) { EXPECT_EQ(::mkfifo(slow.c_str(), 0600), 0); }

    pid_t startLoad(const PseudoTerminal& terminal) {
        errFileIs(terminal.file());
        const pid_t child = start({"--output", "none", slow}, STDIN_FILENO);
        writer_ = ::open(slow.c_str(), O_WRONLY | O_CLOEXEC);
        return child;
    }
    Ended endLoad(pid_t child) {
        EXPECT_EQ(::write(writer_, "{}", 2), 2);
        ::close(writer_);
        return end(child);
    }

    const std::string slow;

private:
    int writer_ = -1;
};

TEST_F(SlowLoadTest, drawsALineAndTakesItAway) {
    PseudoTerminal terminal(200);
    const pid_t child = startLoad(terminal);
    EXPECT_TRUE(terminal.shows("loading"));
    EXPECT_EQ(endLoad(child).status, 0);
    const std::string line = '\r' + slow + ": loading\033[K";
    EXPECT_TRUE(terminal.text().starts_with(line)) << terminal.text();
    EXPECT_TRUE(terminal.text().ends_with("\r\033[K")) << terminal.text();
}

TEST_F(SlowLoadTest, drawsNoMoreThanTheLineHolds) {
    PseudoTerminal terminal(20);
    const pid_t child = startLoad(terminal);
    EXPECT_TRUE(terminal.shows("loading"));
    EXPECT_EQ(endLoad(child).status, 0);
    EXPECT_TRUE(terminal.text().starts_with("\r/slow.json: loading\033[K")) << terminal.text();
}

TEST_F(SlowLoadTest, drawsNothingWhereALineCannotBeDrawnOver) {
    isDumb();
    PseudoTerminal terminal(80);
    const pid_t child = startLoad(terminal);
    ::usleep(1'300'000);
    EXPECT_EQ(endLoad(child).status, 0);
    EXPECT_EQ(terminal.text(), "");
}

TEST_F(TerminalTest, seesNoLineOfALoadThatIsSoonOver) {
    EXPECT_EQ(complained({"--output", "none", document()}), "");
}

}  // namespace
}  // namespace QosAgent
