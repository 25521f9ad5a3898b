#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "agent/host/SocketPath.h"
#include "tests/agent/support/TemporaryFolder.h"

namespace QosAgent {
namespace {

class SocketPathTest : public ::testing::Test {
protected:
    std::string path() const { return folder_ / "socket"; }
    std::string lock() const { return path() + ".lock"; }
    /// Why the path cannot be taken; empty if it can, and then it is given back.
    std::string fault() const {
        const auto taken = SocketPath::take(path());
        const auto* why = std::get_if<std::string>(&taken);
        return why == nullptr ? "" : *why;
    }
    /// A socket that somebody else made, served or not.
    int otherSocket(bool isServed) const {
        const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        const auto address = unixAddress(path());
        EXPECT_EQ(::bind(fd, reinterpret_cast<const sockaddr*>(&*address), sizeof *address), 0);
        if (isServed) {
            EXPECT_EQ(::listen(fd, 1), 0);
        }
        return fd;
    }

private:
    TemporaryFolder folder_;
};

TEST_F(SocketPathTest, removesSocketAndLockInTheEnd) {
    {
        auto taken = SocketPath::take(path());
        auto& held = std::get<SocketPath>(taken);
        const int fd = held.listen();
        EXPECT_GE(fd, 0);
        EXPECT_TRUE(std::filesystem::is_socket(path()));
        EXPECT_TRUE(std::filesystem::exists(lock()));
        ::close(fd);
    }
    EXPECT_FALSE(std::filesystem::exists(path()));
    EXPECT_FALSE(std::filesystem::exists(lock()));
}

TEST_F(SocketPathTest, makesASocketThatOnlyItsOwnerMayUse) {
    const mode_t before = ::umask(0);
    auto taken = SocketPath::take(path());
    const int fd = std::get<SocketPath>(taken).listen();
    ::umask(before);
    struct stat there {};
    EXPECT_EQ(::stat(path().c_str(), &there), 0);
    EXPECT_EQ(there.st_mode & 0777U, 0600U);
    ::close(fd);
}

TEST_F(SocketPathTest, isTakenByOneAtATime) {
    {
        const auto taken = SocketPath::take(path());
        EXPECT_EQ(fault(), "another program is serving it");
        EXPECT_TRUE(std::filesystem::exists(lock()));
    }
    EXPECT_EQ(fault(), "");
}

TEST_F(SocketPathTest, replacesASocketThatNobodyServes) {
    const int fd = otherSocket(false);
    ::close(fd);
    EXPECT_EQ(fault(), "");
}

TEST_F(SocketPathTest, leavesASocketAloneThatIsServedWithoutALock) {
    const int fd = otherSocket(true);
    EXPECT_EQ(fault(), "another program is serving it");
    EXPECT_TRUE(std::filesystem::is_socket(path()));
    ::close(fd);
}

TEST_F(SocketPathTest, leavesOtherFilesAlone) {
    std::ofstream(path()) << "precious";
    EXPECT_EQ(fault(), "something else than a socket is there");
    EXPECT_EQ(std::filesystem::file_size(path()), 8u);
    EXPECT_FALSE(std::filesystem::exists(lock()));
}

TEST_F(SocketPathTest, refusesPathsThatNoSocketCanHave) {
    const auto faultOf = [](const std::string& name) {
        return std::get<std::string>(SocketPath::take(name));
    };
    EXPECT_EQ(faultOf(""), "the path is empty");
    EXPECT_EQ(faultOf("/" + std::string(200, 'x')), "the path is too long for a socket");
    EXPECT_EQ(faultOf("/nowhere/at/all"), "No such file or directory");
}

}  // namespace
}  // namespace QosAgent
