#include "tests/agent/program/FaultsTest.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

namespace QosAgent {
namespace {

/// Files that this process writes, and those it starts meanwhile, have at most so many bytes.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) {
        EXPECT_EQ(::getrlimit(RLIMIT_FSIZE, &before_), 0);
        const rlimit limit{bytes, before_.rlim_max};
        EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
    }
    ~FileSizeLimit() { ::setrlimit(RLIMIT_FSIZE, &before_); }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    rlimit before_{};
};

TEST_F(FaultsTest, keepTheResultOutOfTheTraceFileWhenStandardOutputIsClosed) {
    closedIs(STDOUT_FILENO);
    EXPECT_EQ(run({"--trace-file", path("t"), "-"}, R"({"echo":"a"})"),
              (Ended{2, "", "standard output: Bad file descriptor\n"}));
    EXPECT_EQ(read("t"), "# a\n");
}

TEST_F(FaultsTest, keepRefusalsOutOfTheTraceFileWhenStandardErrorIsClosed) {
    closedIs(STDERR_FILENO);
    EXPECT_EQ(run({"--trace-file", path("t"), path("none.json")}), (Ended{2, "", ""}));
    EXPECT_EQ(read("t"), "");
}

TEST_F(FaultsTest, refuseAStreamFromAClosedStandardInput) {
    closedIs(STDIN_FILENO);
    EXPECT_EQ(run({"--trace-file", path("t"), "-"}), (Ended{2, "", "-: Bad file descriptor\n"}));
}

TEST_F(FaultsTest, areNoneWhereAClosedStreamIsNotNeeded) {
    closedIs(STDOUT_FILENO);
    EXPECT_EQ(run({"--output", "none"}), (Ended{0, "", ""}));
}

TEST_F(FaultsTest, areReportedWhenTheReaderOfTheOutputHasGone) {
    EXPECT_EQ(endWithoutReader({}), (Ended{2, "", "standard output: Broken pipe\n"}));
}

TEST_F(FaultsTest, areNoneWhenTheReaderOfFollowedChangesHasGone) {
    EXPECT_EQ(endWithoutReader({"--follow"}), (Ended{0, "", ""}));
}

TEST_F(FaultsTest, areNoneWhileNobodyReadsFromANonBlockingPipe) {
    const std::string longest(std::size_t{64} << 10, 'x');
    std::string lines;
    for (int i = 0; i < 4; ++i)
        lines += R"({"echo":")" + longest + "\"}\n";
    int ends[2];
    ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
    ASSERT_EQ(::fcntl(ends[1], F_SETFL, O_WRONLY | O_NONBLOCK), 0);
    outIs(ends[1]);
    const pid_t child =
        start({"--output", "none", "--trace-file", "/dev/null", file("s.jsonl", lines)}, 0);
    ::close(ends[1]);
    EXPECT_TRUE(comesTrue([&] { return isFull(ends[0]); }));
    std::string out;
    char bytes[4096];
    for (ssize_t count = 0; (count = ::read(ends[0], bytes, sizeof bytes)) > 0;)
        out.append(bytes, static_cast<std::size_t>(count));
    ::close(ends[0]);
    const std::string line = "# " + longest + '\n';
    EXPECT_EQ(out, line + line + line + line);
    EXPECT_EQ(end(child), (Ended{0, "", ""}));
}

TEST_F(FaultsTest, areReportedWhenAFileMayNotGrow) {
    constexpr rlim_t kMostBytes = 4096;
    const std::string lines = R"({"echo":")" + std::string(kMostBytes, 'x') + "\"}\n";
    const std::string stream = file("s.jsonl", lines);
    const auto endLimited = [&](const std::vector<std::string>& arguments) {
        const FileSizeLimit limit(kMostBytes);
        return end(start(arguments, STDIN_FILENO));
    };
    const Ended full = endLimited({"--trace-file", "/dev/null", stream});
    EXPECT_EQ(full, (Ended{2, "# " + std::string(kMostBytes - 2, 'x'),
                           "standard output: File too large\n"}));
    outFileIs("/dev/null");
    EXPECT_EQ(endLimited({"--trace-file", path("t"), stream}).err,
              path("t") + ": File too large\n");
}

TEST_F(FaultsTest, areReportedWhenTheTraceFileIsFull) {
    EXPECT_EQ(run({"--output", "none", "--trace", "*/9", "--trace-file", "/dev/full"}),
              (Ended{2, "", "/dev/full: No space left on device\n"}));
}

TEST_F(FaultsTest, refuseATraceFileThatIsReadAsWell) {
    const std::string text = R"({"qos/status":{}})";
    const std::string document = file("d.json", text);
    const std::string fault = ": --trace-file would empty a file that is read\n";
    EXPECT_EQ(run({"--trace-file", document, document}), (Ended{2, "", document + fault}));
    fs::create_hard_link(document, path("hard.jsonl"));
    EXPECT_EQ(run({"--trace-file", link("soft", document), path("hard.jsonl")}),
              (Ended{2, "", path("soft") + fault}));
    EXPECT_EQ(run({"--trace-file", path("stdin"), "-"}, "# no operation"),
              (Ended{2, "", path("stdin") + fault}));
    EXPECT_EQ(read("stdin"), "# no operation");
    EXPECT_EQ(run({"--trace-file", path("x/../new.json"), path("new.json")}),
              (Ended{2, "", path("x/../new.json") + fault}));
    EXPECT_FALSE(fs::exists(path("new.json")));
    EXPECT_EQ(run({"--plugin", document, "--trace-file", document}),
              (Ended{2, "", document + fault}));
    file(kToggleFile, "{}");
    EXPECT_EQ(run({"--toggle-dir", path(""), "--trace-file", path(kToggleFile)}),
              (Ended{2, "", path(kToggleFile) + fault}));
    EXPECT_EQ(read("d.json"), text);
    EXPECT_EQ(run({"--trace-file", "/dev/null", link("null.jsonl", "/dev/null")}),
              (Ended{0, "{}\n", ""}));
}

TEST_F(FaultsTest, endFollowingAtASignalWithTheResults) {
    for (const int signal : {SIGINT, SIGTERM}) {
        const std::string endless = pipe("s" + std::to_string(signal) + ".jsonl");
        const pid_t child = start({"--follow", endless}, STDIN_FILENO);
        const int writer = ::open(endless.c_str(), O_WRONLY | O_CLOEXEC);
        const std::string line =
            "{\"update\":\"qos/status/cmapTypeStatus/mapQos/cmapStatus/a\","
            "\"value\":{\"match\":{\"matchIpAccessGroup\":\"a\"}}}\n";
        EXPECT_EQ(::write(writer, line.data(), line.size()), static_cast<ssize_t>(line.size()));
        EXPECT_TRUE(comesTrue([this] { return !read("out").empty(); }));
        ::kill(child, signal);
        const Ended ended = end(child);
        EXPECT_EQ(ended.status, 0);
        EXPECT_EQ(ended.err, "");
        EXPECT_TRUE(ended.out.starts_with(
            "{\"update\":\"qos/openconfig/state/classifiers/classifier/a/state\","
            "\"value\":{\"name\":\"a\",\"type\":\"IPV4\"}}\n{\n"))
            << ended.out;
        ::close(writer);
    }
}

TEST_F(FaultsTest, endWaitingForTheFirstWriterOfAPipeAtASignalWithTheResults) {
    for (const int signal : {SIGINT, SIGTERM}) {
        const std::string first = file("first.jsonl", "{\"echo\":\"applied\"}\n");
        const std::string silent = pipe("s" + std::to_string(signal) + ".jsonl");
        const pid_t child = start({"--trace-file", "/dev/null", first, silent}, STDIN_FILENO);
        EXPECT_TRUE(comesTrue([this] { return !read("out").empty(); }));
        EXPECT_TRUE(comesTrue([&] { return isWaitingFor(child, silent); }));
        ::kill(child, signal);
        EXPECT_EQ(end(child), (Ended{0, "# applied\n{}\n", ""}));
    }
}

TEST_F(FaultsTest, areNoneWhenTheFirstWriterOfAPipeComesLate) {
    const std::string late = pipe("late.jsonl");
    const pid_t child =
        start({"--trace-file", "/dev/null", "--output", "none", late}, STDIN_FILENO);
    EXPECT_TRUE(comesTrue([&] { return isWaitingFor(child, late); }));
    ::kill(child, SIGSTOP);
    ::kill(child, SIGCONT);
    file("late.jsonl", "{\"echo\":\"a\"}\n");
    EXPECT_EQ(end(child), (Ended{0, "# a\n", ""}));
}

TEST_F(FaultsTest, endAtOnceAtASecondSignal) {
    std::string lines;
    for (int i = 0; i < 20'000; ++i)
        lines += "{\"echo\":\"16 bytes each\"}\n";
    for (const int signal : {SIGINT, SIGTERM}) {
        const std::string stream = file("s.jsonl", lines);
        fs::remove(path("pipe"));
        const int reader = readerOfOutput();
        const pid_t child = start({"--trace-file", "/dev/null", stream}, STDIN_FILENO);
        // Nobody reads, so the program comes to wait for room to write, whatever it writes next.
        EXPECT_TRUE(comesTrue([&] { return isFull(reader); }));
        ::kill(child, SIGINT);
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        EXPECT_TRUE(isRunning(child));
        ::kill(child, signal);
        EXPECT_EQ(end(child).status, 128 + signal);
        ::close(reader);
    }
}

}  // namespace
}  // namespace QosAgent
