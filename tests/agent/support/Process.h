#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tests/agent/support/Program.h"

namespace QosAgent {

/// How long a test waits for something that is bound to happen.
constexpr int kPatience = 60'000;

/// A descriptor from which lines are read as they arrive.
class LineSource {
public:
    explicit LineSource(int fd) : fd_(fd) {}
    LineSource(LineSource&& other) noexcept
        : fd_(std::exchange(other.fd_, -1)), held_(std::move(other.held_)) {}
    ~LineSource() { close(); }

    int fd() const { return fd_; }
    /// The next line without its end; what is there, after the end or when patience has run out.
    std::string line() {
        std::size_t end = 0;
        while ((end = held_.find('\n')) == std::string::npos)
            if (!fill()) return std::exchange(held_, "");
        std::string line = held_.substr(0, end);
        held_.erase(0, end + 1);
        return line;
    }
    /// All up to the end.
    std::string rest() {
        while (fill()) {
        }
        return std::exchange(held_, "");
    }
    /// Reads what is there, or waits for it; false at the end.
    bool fill() {
        pollfd waited{fd_, POLLIN, 0};
        if (::poll(&waited, 1, kPatience) <= 0) {
            ADD_FAILURE() << "nothing came, after: " << held_;
            return false;
        }
        std::array<char, 65536> bytes;
        const ssize_t count = ::read(fd_, bytes.data(), bytes.size());
        if (count <= 0) return false;
        held_.append(bytes.data(), static_cast<std::size_t>(count));
        return true;
    }
    void close() {
        if (fd_ >= 0) ::close(std::exchange(fd_, -1));
    }

private:
    int fd_;
    std::string held_;
};

/// A program that runs beside the test, with pipes to its three standard streams. Killed in the end
/// if it still runs.
class Process {
public:
    explicit Process(std::vector<std::string> command) {
        std::array<int, 2> in{};
        std::array<int, 2> out{};
        std::array<int, 2> err{};
        for (auto* ends : {&in, &out, &err})
            EXPECT_EQ(::pipe2(ends->data(), O_CLOEXEC), 0);
        std::vector<char*> argv;
        for (std::string& text : command)
            argv.push_back(text.data());
        argv.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, in[0], STDIN_FILENO);
        posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
        posix_spawn_file_actions_adddup2(&actions, err[1], STDERR_FILENO);
        EXPECT_EQ(::posix_spawn(&pid_, argv[0], &actions, nullptr, argv.data(), environ), 0);
        posix_spawn_file_actions_destroy(&actions);
        for (const int fd : {in[0], out[1], err[1]})
            ::close(fd);
        in_ = in[1];
        out_.emplace(out[0]);
        err_.emplace(err[0]);
    }
    ~Process() {
        closeIn();
        if (pid_ <= 0) return;
        ::kill(pid_, SIGKILL);
        ::waitpid(pid_, nullptr, 0);
    }
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    pid_t pid() const { return pid_; }
    std::string outLine() { return out_->line(); }
    int outFd() const { return out_->fd(); }
    std::string errLine() { return err_->line(); }
    void write(const std::string& text) const {
        EXPECT_EQ(::write(in_, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }
    void closeIn() {
        if (in_ >= 0) ::close(std::exchange(in_, -1));
    }
    void closeOut() { out_->close(); }
    void signal(int number) const { ::kill(pid_, number); }
    /// Waits for its end. Only what was not yet read is in the result.
    Ended end() {
        std::string out = out_->fd() < 0 ? "" : out_->rest();
        std::string err = err_->rest();
        int status = 0;
        EXPECT_EQ(::waitpid(pid_, &status, 0), pid_);
        pid_ = 0;
        const int code = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
        return {code, std::move(out), std::move(err)};
    }

private:
    pid_t pid_ = 0;
    int in_ = -1;
    std::optional<LineSource> out_;
    std::optional<LineSource> err_;
};

}  // namespace QosAgent
