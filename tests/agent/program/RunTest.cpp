#include "tests/agent/program/RunTest.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/stat.h>

#include <chrono>
#include <regex>
#include <thread>

namespace QosAgent {
namespace {

TEST_F(RunTest, printsTheStateOfADocument) {
    EXPECT_EQ(run({"--output", "none", document(), "-"}, R"({"print":"state"})"),
              (Ended{0, kVoice + std::string("\n"), ""}));
}

TEST_F(RunTest, printsOpenConfigToWhatIsNoTerminal) {
    EXPECT_EQ(run({}), (Ended{0, "{}\n", ""}));
}

TEST_F(RunTest, printsATable) {
    EXPECT_EQ(run({"--output", "table", document()}),
              (Ended{0,
                     "CLASSIFIER  TYPE  TERM  MATCH  TARGET GROUP\n"
                     "voice       IPV6  -     -      -\n",
                     ""}));
}

TEST_F(RunTest, printsAllEntitiesIndented) {
    const Ended ended = run({"--output", "entities"});
    EXPECT_EQ(ended, (Ended{0,
                            "{\n  \"qos/status\": {},\n  \"qos/input/config/cli\": {},\n"
                            "  \"acl/config/cli\": {},\n"
                            "  \"qos/openconfig/config/classifiers\": {},\n"
                            "  \"qos/openconfig/state/classifiers\": {}\n}\n",
                            ""}));
}

TEST_F(RunTest, loadsDocumentsBeforeItStartsThePluginWhateverTheirPlace) {
    const std::string stream = file("s.jsonl", R"({"print":"state"})");
    EXPECT_EQ(run({"--output", "none", stream, document()}).out, kVoice + std::string("\n"));
}

TEST_F(RunTest, appliesStreamsInTheOrderGiven) {
    const std::string first = file("1.jsonl", "{\"echo\":\"1\"}\r\n\n# no\n{\"echo\":\"1b\"}");
    const std::string second = file("2.jsonl", R"({"echo":"2"})");
    EXPECT_EQ(run({"--output", "none", second, "-", first, "--trace-file", path("t")},
                  R"({"echo":"in"})"),
              (Ended{0, "# 2\n# in\n# 1\n# 1b\n", ""}));
    EXPECT_EQ(read("t"), "# 2\n# in\n# 1\n# 1b\n");
}

TEST_F(RunTest, followsChangesFromTheStartOn) {
    const std::string stream = "{\"delete\":\"" + kCmaps + "voice\"}";
    EXPECT_EQ(run({"--output", "none", "--follow", document(), "-"}, stream).out,
              "{\"update\":\"" + kState +
                  "voice/state\",\"value\":{\"name\":\"voice\",\"type\":\"IPV6\"}}\n"
                  "{\"delete\":\"" +
                  kState + "voice\"}\n");
}

TEST_F(RunTest, tellsOfAChangeBeforeItReadsTheNext) {
    int in[2];
    ASSERT_EQ(::pipe2(in, O_CLOEXEC), 0);
    ASSERT_EQ(::mkfifo(path("out").c_str(), 0600), 0);
    const int out = ::open(path("out").c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    const pid_t child = start({"--output", "none", "--follow", "-"}, in[0]);
    for (const std::string name : {"a", "b", "c"}) {
        const std::string change =
            "{\"update\":\"" + kCmaps + name + R"(/match/matchIpv6AccessGroup","value":""})" + '\n';
        EXPECT_EQ(::write(in[1], change.data(), change.size()),
                  static_cast<ssize_t>(change.size()));
        EXPECT_EQ(readLine(out), "{\"update\":\"" + kState + name +
                                     "/state\",\"value\":{\"name\":\"" + name +
                                     "\",\"type\":\"IPV6\"}}\n");
    }
    ::close(in[1]);
    ::close(in[0]);
    int status = -1;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    ::close(out);
}

TEST_F(RunTest, takesStateLeftBehindForNoChange) {
    const std::string left =
        file("left.json", R"({"qos/openconfig/state/classifiers":)" + std::string(kVoice) + "}");
    EXPECT_EQ(run({"--output", "none", "--follow", left, document(), "-"}, R"({"print":"state"})"),
              (Ended{0, kVoice + std::string("\n"), ""}));
}

TEST_F(RunTest, explainsLast) {
    const Ended ended = run({"--output", "table", "--machines", "--explain", "voice", document()});
    EXPECT_EQ(ended.status, 0);
    EXPECT_TRUE(
        ended.out.ends_with("\nclassifier voice, IPV6\n"
                            "Nothing differs from what is configured.\n"))
        << ended.out;
}

TEST_F(RunTest, refusesToExplainWhatHasNoName) {
    expectRefused({"--explain", "voice/"}, "qos-agent: --explain: an empty name");
}

TEST_F(RunTest, showsMachinesAsATree) {
    const Ended ended = run({"--output", "none", "--machines", document()});
    EXPECT_EQ(ended.status, 0);
    EXPECT_NE(ended.out.find("QosOc::ClassifierStateSm\n"
                             "  qosStatus: Qos::Status qos/status\n"),
              std::string::npos)
        << ended.out;
    EXPECT_NE(ended.out.find("      cmapStatusSm:\n"
                             "        QosOc::CmapStatusSm voice\n"
                             "          cmapStatus: Qos::ClassMapStatus voice\n"),
              std::string::npos)
        << ended.out;
}

TEST_F(RunTest, printsMachinesAsJson) {
    const Ended ended = run({"--output", "none", document(), "-"}, R"({"print":"machines"})");
    EXPECT_TRUE(ended.out.starts_with(R"([{"type":"QosOc::ClassifierStateSm","key":null,)"
                                      R"("attributes":{"qosStatus":{"type":"Qos::Status",)"
                                      R"("name":"qos/status"},)"))
        << ended.out;
    EXPECT_NE(ended.out.find(R"({"type":"QosOc::CmapStatusSm","key":"voice","attributes":)"
                             R"({"cmapStatus":{"type":"Qos::ClassMapStatus","name":"voice"})"),
              std::string::npos)
        << ended.out;
}

TEST_F(RunTest, showsNoMachinesWhenTheToggleIsOff) {
    const std::string toggles = file("QosOpenConfig.json", R"({"OCQosClassifierStatePath":false})");
    const std::filesystem::path folder = std::filesystem::path(toggles).parent_path();
    EXPECT_EQ(run({"--toggle-dir", folder, "--machines", "--output", "none", document(), "-"},
                  "{\"print\":\"machines\"}\n{\"restart\":\"ClassifierStateSmPlugin\"}"),
              (Ended{0, "[]\n",
                     toggles + ": warning: the toggle \"OCQosClassifierStatePath\" is off: what it "
                               "enables does not run\n"}));
}

TEST_F(RunTest, restartsThePluginOverTheSameDatabase) {
    const Ended ended = run({"--output", "none", document(), "-"},
                            "{\"print\":\"machines\"}\n{\"restart\":\"ClassifierStateSmPlugin\"}\n"
                            "{\"print\":\"machines\"}\n{\"print\":\"state\"}\n");
    const std::size_t end = ended.out.find('\n') + 1;
    const std::string machines = ended.out.substr(0, end);
    EXPECT_GT(machines.size(), 100u);
    EXPECT_EQ(ended, (Ended{0, machines + machines + kVoice + "\n", ""}));
}

TEST_F(RunTest, writesTraceLinesOfTheHandlesThatAreAskedFor) {
    run({"--output", "none", "--trace-file", path("t"), "--trace", "OpenConfigQosClfStateSm/7",
         "--trace", "QosOpenConfigClassifierStateSmMounter/8"});
    const std::regex line(R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{6}Z )"
                          R"(QosOpenConfigClassifierStateSmMounter/8 .*:\d+ \w+ .*)");
    std::istringstream lines(read("t"));
    std::string text;
    std::size_t count = 0;
    for (; std::getline(lines, text); ++count)
        EXPECT_TRUE(std::regex_match(text, line)) << text;
    EXPECT_EQ(count, 4u);
}

TEST_F(RunTest, warnsOfHandlesThatNobodyHas) {
    EXPECT_EQ(run({"--output", "none", "--trace", "Nobody/8", "--trace", "*/0", document()}),
              (Ended{0, "",
                     "qos-agent: warning: --trace: unknown handle \"Nobody\", expected one of *, "
                     "OpenConfigQosClfStateSm, QosOpenConfigClassifierStateSmMounter\n"}));
}

TEST_F(RunTest, repeatsARefusedLineThatCameThroughAPipe) {
    int ends[2];
    ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
    const std::string line = "{\"echo\":\t1}\n";
    ASSERT_EQ(::write(ends[1], line.data(), line.size()), static_cast<ssize_t>(line.size()));
    ::close(ends[1]);
    const pid_t child = start({"--output", "none", "-"}, ends[0]);
    ::close(ends[0]);
    const Ended ended = end(child);
    EXPECT_EQ(ended.status, 2);
    EXPECT_TRUE(std::regex_match(
        ended.err,
        std::regex(R"(-:1:10: expected a string, found a number; line: \{"echo":.*1\}\n)")))
        << ended;
}

TEST_F(RunTest, putsSeveritiesBeforeLinesForTheJournal) {
    const std::string journal = file("err", "");
    struct stat status {};
    ASSERT_EQ(::stat(journal.c_str(), &status), 0);
    const std::string stream = std::to_string(status.st_dev) + ':' + std::to_string(status.st_ino);
    const std::string lines = "{\"openconfig\":{\"x:y\":1}}\n{\"echo\":1}\n";
    ::setenv("JOURNAL_STREAM", stream.c_str(), 1);
    EXPECT_EQ(run({"-"}, lines).err,
              "<4>-:1:16: warning: passed over: x:y\n"
              "<3>-:2:9: expected a string, found a number\n");
    ::setenv("JOURNAL_STREAM", (stream + '0').c_str(), 1);
    EXPECT_EQ(run({"-"}, lines).err,
              "-:1:16: warning: passed over: x:y\n"
              "-:2:9: expected a string, found a number\n");
    ::unsetenv("JOURNAL_STREAM");
}

TEST_F(RunTest, printsItsResultsWhenASignalStopsAStream) {
    for (const int signal : {SIGINT, SIGTERM}) {
        int ends[2];
        ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
        const pid_t child = start({"--output", "none", "--machines", "-"}, ends[0]);
        const std::string line = "{\"print\":\"state\"}\n{\"unfinished";
        ASSERT_EQ(::write(ends[1], line.data(), line.size()), static_cast<ssize_t>(line.size()));
        // The line has been applied once its print is there.
        for (int i = 0; i < 1000 && read("out").empty(); ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        ::kill(child, signal);
        const Ended ended = end(child);
        EXPECT_EQ(ended.status, 0) << ended;
        EXPECT_TRUE(ended.out.starts_with("{}\nQosOc::ClassifierStateSm\n")) << ended;
        EXPECT_EQ(ended.err, "");
        ::close(ends[0]);
        ::close(ends[1]);
    }
}

}  // namespace
}  // namespace QosAgent
