#include <gtest/gtest.h>

#include <sstream>

#include "agent/options/Options.h"

namespace QosAgent {
namespace {

using ::testing::internal::CaptureStderr;
using ::testing::internal::CaptureStdout;
using ::testing::internal::GetCapturedStderr;
using ::testing::internal::GetCapturedStdout;

std::variant<Options, ExitStatus> parsed(std::vector<const char*> arguments) {
    arguments.insert(arguments.begin(), "qos-agent");
    return parseOptions(static_cast<int>(arguments.size()), arguments.data());
}
Options options(const std::vector<const char*>& arguments) {
    return std::get<Options>(parsed(arguments));
}

TEST(OptionsTest, tellsDocumentsFromStreams) {
    const Options given = options({"a.json", "b.jsonl", "-", "c.json"});
    EXPECT_EQ(given.documents, (std::vector<std::string>{"a.json", "c.json"}));
    EXPECT_EQ(given.streams, (std::vector<std::string>{"b.jsonl", "-"}));
}

TEST(OptionsTest, readsAllOptions) {
    const Options given =
        options({"--plugin", "p.so",     "--toggle-dir", "/",       "--output",
                 "entities", "--follow", "--machines",   "--trace", "A/0",
                 "--trace",  "*/9",      "--trace-file", "f",       "--keep-going",
                 "--strict", "--check",  "--explain",    "a~1b/c",  "a.json"});
    EXPECT_EQ(given.pluginFile, "p.so");
    EXPECT_EQ(given.toggleFolder, "/");
    EXPECT_EQ(given.output, OutputFormat::entities);
    EXPECT_TRUE(given.follows);
    EXPECT_TRUE(given.showsMachines);
    EXPECT_EQ(given.traces, (std::vector<TraceSetting>{{"A", 0}, {"*", 9}}));
    EXPECT_EQ(given.traceFile, "f");
    EXPECT_TRUE(given.keepsGoing);
    EXPECT_TRUE(given.isStrict);
    EXPECT_TRUE(given.checksOnly);
    EXPECT_EQ(given.explained, (Question{"a/b", "c"}));
    EXPECT_EQ(given.documents, std::vector<std::string>{"a.json"});
}

TEST(OptionsTest, readsTheFormOfFollowedChanges) {
    EXPECT_EQ(options({"--follow=text"}).followForm, FollowForm::text);
    EXPECT_EQ(options({"--follow=json"}).followForm, FollowForm::json);
    EXPECT_TRUE(options({"--follow=text"}).follows);
    // What follows the option is an input, not its form.
    const Options given = options({"--follow", "a.json"});
    EXPECT_TRUE(given.follows);
    EXPECT_EQ(given.documents, std::vector<std::string>{"a.json"});
}

TEST(OptionsTest, takesOneValueForEachTrace) {
    const Options given = options({"--trace", "A/0", "a.json", "--trace", "B/1", "b.json"});
    EXPECT_EQ(given.traces, (std::vector<TraceSetting>{{"A", 0}, {"B", 1}}));
    EXPECT_EQ(given.documents, (std::vector<std::string>{"a.json", "b.json"}));
}

TEST(OptionsTest, asksForNothingByDefault) {
    const Options given = options({});
    EXPECT_TRUE(given.pluginFile.ends_with("/libQosOpenConfig.so"));
    EXPECT_FALSE(given.follows);
    EXPECT_FALSE(given.showsMachines);
    EXPECT_FALSE(given.keepsGoing);
    EXPECT_FALSE(given.isStrict);
    EXPECT_FALSE(given.checksOnly);
    EXPECT_EQ(given.explained, std::nullopt);
    EXPECT_TRUE(given.traces.empty());
    EXPECT_TRUE(given.traceFile.empty());
}

TEST(OptionsTest, refusesABadCommandLineInOneLine) {
    const std::vector<std::vector<const char*>> bad{
        {"--what"},          {"a.txt"},         {"--output", "xml"}, {"--trace", "A"},
        {"--trace", "A/10"}, {"--trace", "/1"}, {"--trace", "A/x"},  {"--plugin"},
        {"a.json", "b.yml"}, {"--output"},
    };
    for (const auto& arguments : bad) {
        CaptureStderr();
        const auto answer = parsed(arguments);
        const std::string line = GetCapturedStderr();
        ASSERT_TRUE(std::holds_alternative<ExitStatus>(answer)) << arguments[0];
        EXPECT_EQ(std::get<ExitStatus>(answer).status, 2) << arguments[0];
        EXPECT_EQ(line.find('\n'), line.size() - 1) << line;
        EXPECT_TRUE(line.starts_with("qos-agent: ")) << line;
    }
}

TEST(OptionsTest, saysWhatIsWrongAndWhatWasMeant) {
    const std::vector<std::pair<std::vector<const char*>, std::string>> bad{
        {{"--folow"}, R"(unknown option "--folow", did you mean "--follow"?)"},
        {{"--trace_file=x"}, R"(unknown option "--trace_file", did you mean "--trace-file"?)"},
        {{"--what"}, R"(unknown option "--what")"},
        {{"--outptu", "table"}, R"(unknown option "--outptu", did you mean "--output"?)"},
        {{"--keep-going=x"}, R"("--keep-going" takes no value)"},
        {{"--follow=false"}, R"(--follow: expected json or text, found "false")"},
        {{"--machines=false"}, R"("--machines" takes no value)"},
        {{"-f"}, R"(unknown option "-f")"},
        {{"--plugin"}, R"("--plugin" needs a FILE)"},
        {{"--output", "none", "--output", "none"}, R"("--output" is given more than once)"},
        {{"--output", "xml"},
         R"(--output: expected table, openconfig, entities or none, found "xml")"},
        {{"--trace", "A"}, R"(--trace: expected HANDLE/LEVEL with a level from 0 to 9, found "A")"},
        {{"a.txt"}, R"(INPUT: an input ends in .json or .jsonl, or is -, found "a.txt")"},
    };
    for (const auto& [arguments, words] : bad) {
        CaptureStderr();
        parsed(arguments);
        EXPECT_EQ(GetCapturedStderr(), "qos-agent: " + words + '\n');
    }
}

TEST(OptionsTest, helpsInLinesThatATerminalHolds) {
    CaptureStdout();
    parsed({"--help"});
    std::istringstream help(GetCapturedStdout());
    std::size_t count = 0;
    for (std::string line; std::getline(help, line); ++count)
        EXPECT_LE(line.size(), 80u) << line;
    EXPECT_GT(count, 20u);
}

TEST(OptionsTest, answersHelpAndVersionOnStandardOutput) {
    for (const char* option : {"--help", "--version"}) {
        CaptureStdout();
        const auto answer = parsed({option});
        EXPECT_NE(GetCapturedStdout().find("qos-agent "), std::string::npos);
        EXPECT_EQ(std::get<ExitStatus>(answer).status, 0);
    }
}

}  // namespace
}  // namespace QosAgent
