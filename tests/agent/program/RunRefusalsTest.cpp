#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tests/agent/program/RunTest.h"

namespace QosAgent {
namespace {

class RunRefusalsTest : public RunTest {};

TEST_F(RunRefusalsTest, refusesDocumentsWithTheirPlace) {
    const std::string bad = file("bad.json", "{\"qos/status\":\n {\"x\":1}}");
    expectRefused({"--follow", document(), bad}, bad + R"(:2:3: unknown member "x")");
    const std::string broken = file("broken.json", "{");
    expectRefused({broken}, broken + ":1:2: expected a key or '}', found the end of the text");
    expectRefused({path("none.json")}, path("none.json") + ": No such file or directory");
}

TEST_F(RunRefusalsTest, refusesAConfigurationWhoseTopMemberIsMisspelt) {
    const std::string bad = file("bad.json", R"({"openconfig-qos:qso":{}})");
    expectRefused(
        {bad}, bad + R"(:1:2: unknown member "openconfig-qos:qso", expected "openconfig-qos:qos")");
    const std::string bare = file("bare.json", R"({"qos":{}})");
    expectRefused({bare}, bare + R"(:1:2: unknown member "qos", expected "openconfig-qos:qos")");
}

TEST_F(RunRefusalsTest, takesADocumentFromADescriptor) {
    for (const char* name : {"/dev/stdin", "/dev/fd/0"})
        EXPECT_EQ(run({"--output", "table", name}, kDocument),
                  (Ended{0,
                         "CLASSIFIER  TYPE  TERM  MATCH  TARGET GROUP\n"
                         "voice       IPV6  -     -      -\n",
                         ""}));
}

TEST_F(RunRefusalsTest, stopsAtTheFirstBadLine) {
    EXPECT_EQ(
        run({"--output", "table", "-"}, "{\"echo\":\"a\"}\n\n {\"echo\":1}\n{\"echo\":\"b\"}\n"),
        (Ended{2, "# a\n", "# a\n-:3:10: expected a string, found a number\n"}));
}

TEST_F(RunRefusalsTest, goesOnAfterABadLineWhenAskedTo) {
    EXPECT_EQ(run({"--output", "none", "--keep-going", "--trace-file", path("t"), "-"},
                  "x\n{\"echo\":\"a\"}\n{\"delete\":\"qos/status\"}\n"),
              (Ended{1, "# a\n",
                     "-:1:1: expected a value, found 'x'\n"
                     "-:3:11: the root of a subtree cannot be deleted\n"}));
}

TEST_F(RunRefusalsTest, refusesStreamsThatCannotBeRead) {
    expectRefused({path("none.jsonl")}, path("none.jsonl") + ": No such file or directory");
    std::filesystem::create_directory(path("dir.jsonl"));
    expectRefused({"--output", "none", "--keep-going", path("dir.jsonl")},
                  path("dir.jsonl") + ": Is a directory");
}

TEST_F(RunRefusalsTest, refusesPluginsThatCannotBeLoaded) {
    const std::string none = path("none.so");
    expectRefused({"--plugin", none}, none + ": cannot be loaded: No such file or directory");
    const std::string text = file("text.so", "no library");
    expectRefused({"--plugin", text}, text + ": cannot be loaded: file too short");
}

TEST_F(RunRefusalsTest, refusesLibrariesThatAreNoPlugin) {
    expectRefused({"--plugin", "/lib/x86_64-linux-gnu/libm.so.6"},
                  "/lib/x86_64-linux-gnu/libm.so.6: registers no plug-in");
}

TEST_F(RunRefusalsTest, refusesMalformedToggleFiles) {
    const std::string toggles = file("QosOpenConfig.json", "{\"a\":\n1}");
    expectRefused({"--toggle-dir", std::filesystem::path(toggles).parent_path()},
                  toggles + ":2:1: expected true or false, found a number");
}

TEST_F(RunRefusalsTest, refusesAToggleFolderThatIsNone) {
    const std::string none = path("none");
    expectRefused({"--toggle-dir", none},
                  "qos-agent: --toggle-dir: \"" + none + "\": No such file or directory");
    const std::string text = file("text", "");
    expectRefused({"--toggle-dir", text},
                  "qos-agent: --toggle-dir: \"" + text + "\" is not a directory");
}

TEST_F(RunRefusalsTest, refusesTraceFilesThatCannotBeWritten) {
    expectRefused({"--trace-file", path("no/t")}, path("no/t") + ": No such file or directory");
}

TEST_F(RunRefusalsTest, reportsAFailedWrite) {
    outFileIs("/dev/full");
    for (const char* option : {"--machines", "--help", "--version"}) {
        const Ended ended = run({option});
        EXPECT_EQ(ended.status, 2) << option;
        EXPECT_EQ(ended.err, "standard output: No space left on device\n") << option;
    }
}

}  // namespace
}  // namespace QosAgent
