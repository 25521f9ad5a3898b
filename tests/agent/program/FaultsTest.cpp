#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <chrono>
#include <thread>

#include "tests/agent/support/Program.h"

namespace QosAgent {
namespace {

namespace fs = std::filesystem;

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

/// What is around the program fails it: files, streams, signals.
class FaultsTest : public ProgramTest {
protected:
    static constexpr const char* kToggleFile = "QosOpenConfig.json";

    std::string pipe(const std::string& name) {
        EXPECT_EQ(::mkfifo(path(name).c_str(), 0600), 0);
        return path(name);
    }
    std::string link(const std::string& name, const std::string& target) {
        fs::create_symlink(target, path(name));
        return path(name);
    }
    /// A pipe in the place of standard output. Nobody reads from it.
    int readerOfOutput() {
        outFileIs(pipe("pipe"));
        return ::open(path("pipe").c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    }
    std::string builtPlugin() const {
        return fs::path(program()).parent_path() / "libQosOpenConfig.so";
    }
    Ended runWithToggles() { return run({"--toggle-dir", path("")}); }
    std::string refusedToggles(const std::string& fault) const {
        return path("") + '/' + kToggleFile + fault + '\n';
    }
    template <class Condition>
    static bool comesTrue(Condition condition) {
        for (int i = 0; i < 1000 && !condition(); ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        return condition();
    }
    /// Prints to a pipe whose reader has gone.
    Ended endWithoutReader(const std::vector<std::string>& options) {
        const int reader = readerOfOutput();
        std::vector<std::string> arguments = options;
        arguments.push_back(pipe("endless.jsonl"));
        const pid_t child = start(arguments, STDIN_FILENO);
        const int writer = ::open(arguments.back().c_str(), O_WRONLY | O_CLOEXEC);
        ::close(reader);
        const std::string line = "{\"print\":\"state\"}\n";
        EXPECT_EQ(::write(writer, line.data(), line.size()), static_cast<ssize_t>(line.size()));
        const Ended ended = end(child);
        ::close(writer);
        return ended;
    }
    static bool isFull(int pipeReader) {
        int bytes = 0;
        ::ioctl(pipeReader, FIONREAD, &bytes);
        return bytes == ::fcntl(pipeReader, F_GETPIPE_SZ);
    }
    /// Whether the process has the file open, and sleeps.
    static bool isWaitingFor(pid_t child, const std::string& file) {
        const fs::path process = "/proc/" + std::to_string(child);
        std::error_code ignored;
        bool isOpen = false;
        for (const auto& entry : fs::directory_iterator(process / "fd", ignored))
            isOpen = isOpen || fs::read_symlink(entry.path(), ignored) == file;
        std::string stat;
        std::getline(std::ifstream(process / "stat"), stat);
        return isOpen && stat.find(") S ") != std::string::npos;
    }
    static bool isRunning(pid_t child) {
        siginfo_t info{};
        ::waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOHANG | WNOWAIT);
        return info.si_pid == 0;
    }
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

TEST_F(FaultsTest, refuseAPluginThatOthersMayWrite) {
    const std::string plugin = path("p.so");
    fs::copy_file(builtPlugin(), plugin);
    EXPECT_EQ(run({"--plugin", plugin}), (Ended{0, "{}\n", ""}));
    fs::permissions(plugin, fs::perms::others_write, fs::perm_options::add);
    EXPECT_EQ(run({"--plugin", plugin}),
              (Ended{2, "", plugin + ": cannot be loaded: others may write to it (chmod go-w)\n"}));
}

TEST_F(FaultsTest, refuseAPluginThatIsCutOff) {
    const std::string cut = path("cut.so");
    fs::copy_file(builtPlugin(), cut);
    const auto size = fs::file_size(cut);
    // What is loaded comes first; debug information, the larger part, is not missed.
    for (const auto rest : {size / 8, std::uintmax_t{4096}, std::uintmax_t{100}}) {
        fs::resize_file(cut, rest);
        EXPECT_EQ(run({"--plugin", cut}),
                  (Ended{2, "", cut + ": cannot be loaded: file truncated\n"}))
            << rest << " bytes";
    }
    fs::resize_file(cut, 0);
    EXPECT_EQ(run({"--plugin", cut}), (Ended{2, "", cut + ": cannot be loaded: file too short\n"}));
}

TEST_F(FaultsTest, refusePluginsThatAreNoFiles) {
    EXPECT_EQ(run({"--plugin", pipe("p.so")}),
              (Ended{2, "", path("p.so") + ": cannot be loaded: not a regular file\n"}));
    EXPECT_EQ(run({"--plugin", path("")}),
              (Ended{2, "", path("") + ": cannot be loaded: not a regular file\n"}));
}

TEST_F(FaultsTest, refuseAPluginBelowAFolderThatIsNotThere) {
    EXPECT_EQ(run({"--plugin", "nowhere/p.so"}),
              (Ended{2, "", "nowhere/p.so: cannot be loaded: No such file or directory\n"}));
    EXPECT_EQ(run({"--plugin", "p.so"}).err, "p.so: cannot be loaded: No such file or directory\n");
}

TEST_F(FaultsTest, refuseToggleFilesThatCannotBeRead) {
    link(kToggleFile, "/proc/self/mem");  // its first page cannot be read
    EXPECT_EQ(runWithToggles(), (Ended{2, "", refusedToggles(": Input/output error")}));
    fs::remove(path(kToggleFile));
    link(kToggleFile, kToggleFile);
    EXPECT_EQ(runWithToggles(),
              (Ended{2, "", refusedToggles(": Too many levels of symbolic links")}));
}

TEST_F(FaultsTest, refuseAPipeInPlaceOfTheToggleFile) {
    pipe(kToggleFile);
    EXPECT_EQ(runWithToggles(), (Ended{2, "", refusedToggles(": not a regular file")}));
}

TEST_F(FaultsTest, refuseAToggleFileOfMoreThanAMebibyte) {
    const std::string most = std::string((std::size_t{1} << 20) - 2, ' ') + "{}";
    file(kToggleFile, most);
    EXPECT_EQ(runWithToggles(), (Ended{0, "{}\n", ""}));
    file(kToggleFile, ' ' + most);
    EXPECT_EQ(runWithToggles(),
              (Ended{2, "", refusedToggles(":1:1: text longer than 1048576 bytes")}));
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
