#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "tests/agent/support/TemporaryFolder.h"

namespace QosAgent {

/// How a process ended, and what it said.
struct Ended {
    int status;  ///< the exit status; 128 and the signal if one ended it
    std::string out;
    std::string err;
    friend bool operator==(const Ended&, const Ended&) = default;
    friend std::ostream& operator<<(std::ostream& stream, const Ended& ended) {
        return stream << "status " << ended.status << "\n--- out\n"
                      << ended.out << "--- err\n"
                      << ended.err;
    }
};

/// Runs the built program, in a folder of its own that is gone in the end.
class ProgramTest : public ::testing::Test {
protected:
    std::string file(const std::string& name, const std::string& text) {
        std::ofstream(folder_ / name, std::ios::binary) << text;
        return folder_ / name;
    }
    std::string path(const std::string& name) const { return folder_ / name; }
    std::string read(const std::string& name) const {
        std::ostringstream text;
        text << std::ifstream(folder_ / name, std::ios::binary).rdbuf();
        return text.str();
    }

    Ended run(const std::vector<std::string>& arguments, const std::string& input = "") {
        file("stdin", input);
        const int in = ::open(path("stdin").c_str(), O_RDONLY | O_CLOEXEC);
        const pid_t child = start(arguments, in);
        ::close(in);
        return end(child);
    }
    pid_t start(const std::vector<std::string>& arguments, int in) {
        std::vector<std::string> texts{program()};
        texts.insert(texts.end(), arguments.begin(), arguments.end());
        std::vector<char*> argv;
        for (std::string& text : texts)
            argv.push_back(text.data());
        argv.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, in, STDIN_FILENO);
        const int flags = O_WRONLY | O_CREAT | O_TRUNC;
        if (out_ >= 0)
            posix_spawn_file_actions_adddup2(&actions, out_, STDOUT_FILENO);
        else
            posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, outFile().c_str(), flags,
                                             0666);
        posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, errFile().c_str(), flags, 0666);
        for (const int fd : closed_)
            posix_spawn_file_actions_addclose(&actions, fd);
        pid_t child = 0;
        EXPECT_EQ(::posix_spawn(&child, argv[0], &actions, nullptr, argv.data(), environ), 0);
        posix_spawn_file_actions_destroy(&actions);
        return child;
    }
    Ended end(pid_t child) {
        int status = 0;
        EXPECT_EQ(::waitpid(child, &status, 0), child);
        const int code = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
        return {code, read("out"), read("err")};
    }
    /// Beside the folder of the tests in the build tree.
    static std::string program() {
        const auto tests = std::filesystem::read_symlink("/proc/self/exe").parent_path();
        return tests.parent_path() / "bin" / "qos-agent";
    }
    void outFileIs(const std::string& name) { outFile_ = name; }
    /// The program shares this open file as its standard output.
    void outIs(int fd) { out_ = fd; }
    void errFileIs(const std::string& name) { errFile_ = name; }
    /// The program is started without this standard stream.
    void closedIs(int fd) { closed_ = {fd}; }

private:
    std::string outFile() const { return outFile_.empty() ? path("out") : outFile_; }
    std::string errFile() const { return errFile_.empty() ? path("err") : errFile_; }

    TemporaryFolder folder_;
    std::string outFile_;
    int out_ = -1;
    std::vector<int> closed_;
    std::string errFile_;
};

}  // namespace QosAgent
