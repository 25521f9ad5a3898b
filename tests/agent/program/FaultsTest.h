#pragma once

#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <sys/stat.h>

#include <chrono>
#include <thread>

#include "tests/agent/support/Program.h"

namespace QosAgent {

namespace fs = std::filesystem;

/// Runs the program in a broken environment: files, streams, signals.
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

}  // namespace QosAgent
