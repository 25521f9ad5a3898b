#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "agent/loop/Loop.h"
#include "tests/agent/support/LoopLibrary.h"
#include "tests/agent/support/TemporaryFolder.h"

namespace QosAgent {
namespace {

using namespace std::chrono_literals;
using Texts = std::vector<std::string>;

class LoopTest : public ::testing::Test {
protected:
    LoopTest() : loop(loopModule().make()) { EXPECT_EQ(::pipe2(pipe_, O_CLOEXEC), 0); }
    ~LoopTest() override {
        ::close(pipe_[0]);
        ::close(pipe_[1]);
    }
    int readEnd() const { return pipe_[0]; }
    void write(const std::string& text) const {
        EXPECT_EQ(::write(pipe_[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }
    std::string read() const {
        char buffer[100];
        const ssize_t count = ::read(pipe_[0], buffer, sizeof buffer);
        return std::string(buffer, count < 0 ? 0 : static_cast<std::size_t>(count));
    }

    std::unique_ptr<Loop> loop;

private:
    int pipe_[2]{};
};

TEST_F(LoopTest, isOfTheVersionThatTheProgramExpects) {
    EXPECT_EQ(loopModule().version, kLoopVersion);
}

TEST_F(LoopTest, callsWhenADescriptorIsReady) {
    Texts read;
    const auto watch = loop->watch(readEnd(), true, false, [&] {
        read.push_back(this->read());
        if (read.size() == 2) loop->stop();
        write("more");
    });
    write("first");
    loop->run();
    EXPECT_EQ(read, (Texts{"first", "more"}));
}

TEST_F(LoopTest, callsForTheInterestAskedForLast) {
    int sockets[2];
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM, 0, sockets), 0);
    Loop::WatchPtr watch;
    int calls = 0;
    watch = loop->watch(sockets[0], false, true, [&] {
        ++calls;
        watch->interestIs(false, false);
        loop->post([&] { loop->stop(); });
    });
    loop->run();
    EXPECT_EQ(calls, 1);
    watch.reset();
    ::close(sockets[0]);
    ::close(sockets[1]);
}

TEST_F(LoopTest, takesAFileThatCannotBeWaitedForAsAlwaysReady) {
    const TemporaryFolder folder;
    const int fd = ::open((folder / "file").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    int calls = 0;
    Loop::WatchPtr watch;
    watch = loop->watch(fd, true, false, [&] {
        if (++calls < 3) return;
        watch->interestIs(false, false);
        loop->post([&] { loop->stop(); });
    });
    loop->run();
    EXPECT_EQ(calls, 3);
    watch.reset();
    ::close(fd);
}

TEST_F(LoopTest, letsAHandlerDestroyItself) {
    const auto held = std::make_shared<int>(7);
    Loop::WatchPtr watch;
    watch = loop->watch(readEnd(), true, false, [&, held] {
        watch.reset();
        EXPECT_EQ(*held, 7);
        loop->stop();
    });
    write("x");
    loop->run();
    EXPECT_EQ(held.use_count(), 1);
}

TEST_F(LoopTest, runsWhatIsPostedInOrder) {
    Texts ran;
    loop->post([&] {
        ran.push_back("first");
        loop->post([&] {
            ran.push_back("posted by the first");
            loop->stop();
        });
    });
    loop->post([&] { ran.push_back("second"); });
    loop->run();
    EXPECT_EQ(ran, (Texts{"first", "second", "posted by the first"}));
}

TEST_F(LoopTest, runsWhatOtherThreadsPost) {
    constexpr int kEach = 1000;
    int ran = 0;
    const auto post = [&] {
        for (int i = 0; i < kEach; ++i)
            loop->post([&] {
                if (++ran == 2 * kEach) loop->stop();
            });
    };
    std::thread first(post);
    std::thread second(post);
    loop->run();
    first.join();
    second.join();
    EXPECT_EQ(ran, 2 * kEach);
}

TEST_F(LoopTest, callsAfterATimeUnlessTheSourceIsDestroyed) {
    bool isCalled = false;
    loop->after(1ms, [&] { isCalled = true; }).reset();
    const auto timer = loop->after(5ms, [&] { loop->stop(); });
    const auto begin = std::chrono::steady_clock::now();
    loop->run();
    EXPECT_GE(std::chrono::steady_clock::now() - begin, 5ms);
    EXPECT_FALSE(isCalled);
}

TEST_F(LoopTest, callsForSignals) {
    sigset_t signals;
    sigset_t before;
    sigemptyset(&signals);
    sigaddset(&signals, SIGUSR1);
    ::pthread_sigmask(SIG_BLOCK, &signals, &before);
    const auto source = loop->onSignal(SIGUSR1, [&] { loop->stop(); });
    ::raise(SIGUSR1);
    loop->run();
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

TEST_F(LoopTest, tellsTheServiceManager) {
    const TemporaryFolder folder;
    const std::string path = folder / "manager";
    const int manager = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{AF_UNIX, {}};
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(::bind(manager, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    ::setenv("NOTIFY_SOCKET", path.c_str(), 1);
    loop->notify("READY=1");
    char text[100];
    const ssize_t count = ::recv(manager, text, sizeof text, MSG_DONTWAIT);
    EXPECT_EQ(std::string(text, count < 0 ? 0 : static_cast<std::size_t>(count)), "READY=1");
    ::unsetenv("NOTIFY_SOCKET");
    ::close(manager);
}

}  // namespace
}  // namespace QosAgent
