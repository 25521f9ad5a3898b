#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "agent/host/ListeningSocket.h"
#include "tests/agent/support/TemporaryFolder.h"

namespace QosAgent {
namespace {

using Reach = ListeningSocket::Reach;

/// Why the address cannot be had; empty if it can.
std::string fault(const std::string& address) {
    const auto opened = ListeningSocket::open(address);
    const auto* why = std::get_if<std::string>(&opened);
    return why == nullptr ? "" : *why;
}

TEST(ListeningSocketTest, takesAFreePortAndNamesIt) {
    const auto opened = ListeningSocket::open("127.0.0.1:0");
    const auto& socket = std::get<ListeningSocket>(opened);
    EXPECT_TRUE(socket.address().starts_with("127.0.0.1:"));
    EXPECT_NE(socket.address(), "127.0.0.1:0");
    EXPECT_EQ(fault(socket.address()), socket.address() + ": Address already in use");
}

TEST(ListeningSocketTest, knowsWhoCanReachIt) {
    const TemporaryFolder folder;
    const auto reach = [](const std::string& address) {
        return std::get<ListeningSocket>(ListeningSocket::open(address)).reach();
    };
    EXPECT_EQ(reach("127.0.0.2:0"), Reach::loopback);
    EXPECT_EQ(reach("0.0.0.0:0"), Reach::network);
    EXPECT_EQ(reach("unix:" + (folder / "socket").string()), Reach::ownUser);
}

TEST(ListeningSocketTest, leavesNothingInTheFileSystem) {
    const TemporaryFolder folder;
    const std::string path = folder / "socket";
    {
        const auto opened = ListeningSocket::open("unix:" + path);
        EXPECT_EQ(std::get<ListeningSocket>(opened).address(), "unix:" + path);
        EXPECT_EQ(fault("unix:" + path), "unix:" + path + ": another program is serving it");
    }
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

TEST(ListeningSocketTest, refusesWhatIsNoAddress) {
    for (const char* address : {"", "localhost", ":1", "localhost:"})
        EXPECT_EQ(fault(address),
                  std::string(address) + ": not of the form HOST:PORT, [IPV6]:PORT or unix:PATH");
    EXPECT_EQ(fault("localhost:65536"), "localhost:65536: the port is no number up to 65535");
    EXPECT_EQ(fault("unix:"), "unix:: the path is empty");
}

}  // namespace
}  // namespace QosAgent
