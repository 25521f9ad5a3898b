#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <string>

namespace QosAgent {

/// A terminal that nobody sits at: what a program writes to its file can be read, byte for byte.
class PseudoTerminal {
public:
    explicit PseudoTerminal(unsigned short columns) {
        master_ = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
        EXPECT_GE(master_, 0);
        EXPECT_EQ(::grantpt(master_), 0);
        EXPECT_EQ(::unlockpt(master_), 0);
        std::array<char, 64> name{};
        EXPECT_EQ(::ptsname_r(master_, name.data(), name.size()), 0);
        file_ = name.data();
        // Held open: a terminal that the last program closes is gone.
        slave_ = ::open(name.data(), O_RDWR | O_NOCTTY | O_CLOEXEC);
        termios attributes{};
        EXPECT_EQ(::tcgetattr(slave_, &attributes), 0);
        attributes.c_oflag &= ~static_cast<tcflag_t>(OPOST);
        EXPECT_EQ(::tcsetattr(slave_, TCSANOW, &attributes), 0);
        const winsize size{24, columns, 0, 0};
        EXPECT_EQ(::ioctl(slave_, TIOCSWINSZ, &size), 0);
    }
    ~PseudoTerminal() {
        ::close(slave_);
        ::close(master_);
    }
    PseudoTerminal(const PseudoTerminal&) = delete;
    PseudoTerminal& operator=(const PseudoTerminal&) = delete;

    const std::string& file() const { return file_; }
    /// All that was written so far.
    const std::string& text() {
        while (isReadable(0)) {
            std::array<char, 4096> bytes;
            const ssize_t count = ::read(master_, bytes.data(), bytes.size());
            if (count <= 0) break;
            text_.append(bytes.data(), static_cast<std::size_t>(count));
        }
        return text_;
    }
    /// Waits for the text to be written, for ten seconds at most.
    bool shows(const std::string& wanted) {
        constexpr int kTenths = 100;
        for (int i = 0; i < kTenths && text().find(wanted) == std::string::npos; ++i)
            isReadable(100);
        return text_.find(wanted) != std::string::npos;
    }

private:
    bool isReadable(int milliseconds) const {
        pollfd waited{master_, POLLIN, 0};
        return ::poll(&waited, 1, milliseconds) > 0;
    }

    int master_;
    int slave_;
    std::string file_;
    std::string text_;
};

}  // namespace QosAgent
