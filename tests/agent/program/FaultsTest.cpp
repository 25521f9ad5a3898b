#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <sys/stat.h>

#include <chrono>
#include <thread>

#include "tests/agent/support/Program.h"

namespace QosAgent {
namespace {

namespace fs = std::filesystem;

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
    const int reader = readerOfOutput();
    const std::string endless = pipe("endless.jsonl");
    const pid_t child = start({"--follow", endless}, STDIN_FILENO);
    const int writer = ::open(endless.c_str(), O_WRONLY | O_CLOEXEC);
    ::close(reader);
    const std::string line = "{\"print\":\"state\"}\n";
    EXPECT_EQ(::write(writer, line.data(), line.size()), static_cast<ssize_t>(line.size()));
    EXPECT_EQ(end(child), (Ended{2, "", "standard output: Broken pipe\n"}));
    ::close(writer);
}

TEST_F(FaultsTest, areReportedWhenTheTraceFileIsFull) {
    EXPECT_EQ(run({"--output", "none", "--trace", "*/9", "--trace-file", "/dev/full"}),
              (Ended{2, "", "/dev/full: No space left on device\n"}));
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
    const Ended folder = run({"--plugin", path("")});
    EXPECT_EQ(folder.status, 2);
    EXPECT_EQ(folder.err, path("") + ": cannot be loaded: cannot read file data: Is a directory\n");
}

TEST_F(FaultsTest, refuseAPluginBelowAFolderThatIsNotThere) {
    EXPECT_EQ(run({"--plugin", "nowhere/p.so"}),
              (Ended{2, "",
                     "nowhere/p.so: cannot be loaded: cannot open shared object file: "
                     "No such file or directory\n"}));
    EXPECT_EQ(run({"--plugin", "p.so"}).err,
              "p.so: cannot be loaded: cannot open shared object file: "
              "No such file or directory\n");
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
        const auto isFull = [reader] {
            int bytes = 0;
            ::ioctl(reader, FIONREAD, &bytes);
            return bytes == ::fcntl(reader, F_GETPIPE_SZ);
        };
        EXPECT_TRUE(comesTrue(isFull));
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
