#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "agent/Run.h"
#include "tests/agent/support/TemporaryFolder.h"
#include "tests/support/Allocations.h"

namespace QosAgent {
namespace {

constexpr int kRanThrough = 100;
constexpr int kUnnoticed = 101;

/// How the program ended, and what it said.
struct Ended {
    int status;  ///< the exit status; 128 and the signal if one ended it
    std::string out;
    std::string err;
};

/// 17, or what the environment variable `QOS_ALLOCATIONS_STRIDE` says: of so many allocations one
/// fails.
std::size_t stride() {
    const char* stride = std::getenv("QOS_ALLOCATIONS_STRIDE");
    return stride == nullptr ? 17 : static_cast<std::size_t>(std::atoi(stride));
}

/// A run of the whole program with one allocation failing, each in a process of its own.
class ProgramAllocationTest : public ::testing::Test {
protected:
    ProgramAllocationTest() {
        std::ofstream(folder / "QosOpenConfig.json") << R"({"OCQosClassifierStatePath": true})";
        std::ofstream(folder / "document.json")
            << R"({"qos/status": {"cmapTypeStatus": {"mapQos": {"cmapStatus": {"voice": {"match": )"
               R"({"matchIpv6AccessGroup": "voice6"}}}}}}})";
        std::ofstream(folder / "changes.jsonl")
            << R"({"update": "qos/status/cmapTypeStatus/mapQos/cmapStatus/video/match/matchCos", )"
               R"("value": ""})"
               "\n"
               R"({"delete": "qos/status/cmapTypeStatus/mapQos/cmapStatus/voice"})"
               "\n";
        arguments = {"qos-agent",
                     "--plugin",
                     QOS_PLUGIN_FILE,
                     "--follow",
                     "--toggle-dir",
                     folder.path(),
                     "--machines",
                     folder / "document.json",
                     folder / "changes.jsonl"};
    }

    /// The status is `kRanThrough` when there was no such allocation.
    Ended runFailing(std::size_t nth) const {
        const pid_t child = ::fork();
        if (child == 0) runAndEnd(nth);
        int status = 0;
        ::waitpid(child, &status, 0);
        return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status), text("out"),
                text("err")};
    }

    TemporaryFolder folder;
    std::vector<std::string> arguments;

private:
    [[noreturn]] void runAndEnd(std::size_t nth) const {
        writeTo("out", STDOUT_FILENO);
        writeTo("err", STDERR_FILENO);
        std::vector<const char*> argv;
        for (const std::string& argument : arguments)
            argv.push_back(argument.c_str());
        const TestSupport::FailingAllocation failing(nth);
        const int status = runProgram(static_cast<int>(argv.size()), argv.data());
        if (!failing.hasFailed()) ::_exit(kRanThrough + status);
        ::_exit(status == 0 ? kUnnoticed : status);
    }
    void writeTo(const char* name, int fd) const {
        ::dup2(::open((folder / name).c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), fd);
    }
    std::string text(const char* name) const {
        std::string text;
        std::getline(std::ifstream(folder / name), text, '\0');
        return text;
    }
};

TEST_F(ProgramAllocationTest, saysSoOrStopsWhereMemoryRunsOut) {
    const Ended untroubled = runFailing(~std::size_t{0} - 1);
    ASSERT_EQ(untroubled.status, kRanThrough) << untroubled.err;
    ASSERT_NE(untroubled.out.find("\"delete\""), std::string::npos);
    std::size_t refusals = 0;
    std::size_t aborts = 0;
    std::size_t nth = 0;
    for (;; nth += stride()) {
        const Ended ended = runFailing(nth);
        if (ended.status == kRanThrough) break;
        EXPECT_TRUE(untroubled.out.starts_with(ended.out)) << nth << ": " << ended.out;
        if (ended.status == 2) {
            EXPECT_EQ(ended.err, "qos-agent: out of memory\n") << nth;
            ++refusals;
        } else {
            EXPECT_EQ(ended.status, 128 + SIGABRT) << nth << ": " << ended.err;
            EXPECT_NE(ended.err.find("std::bad_alloc"), std::string::npos)
                << nth << ": " << ended.err;
            ++aborts;
        }
    }
    EXPECT_GT(refusals, 0u);
    EXPECT_GT(aborts, 0u);
    RecordProperty("allocations", static_cast<int>(nth));
    RecordProperty("aborts", static_cast<int>(aborts));
}

}  // namespace
}  // namespace QosAgent
