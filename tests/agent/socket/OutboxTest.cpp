#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <string>
#include <vector>

#include "agent/socket/Outbox.h"

namespace QosAgent {
namespace {

ChangeLinePtr updated(const std::string& path, const std::string& value) {
    return std::make_shared<const ChangeLine>(ChangeLine{path, path + '=' + value + '\n', false});
}
ChangeLinePtr removed(const std::string& path) {
    return std::make_shared<const ChangeLine>(ChangeLine{path, '-' + path + '\n', true});
}

class OutboxTest : public ::testing::Test {
protected:
    OutboxTest() : outbox(open()) {}
    ~OutboxTest() override {
        ::close(ends_[0]);
        ::close(ends_[1]);
    }
    /// Fills the way to the client until it takes no more, and forgets about that.
    void clog() {
        outbox.addAnswer(std::string(1 << 20, '.') + '\n');
        EXPECT_TRUE(outbox.flush());
        EXPECT_FALSE(outbox.isEmpty());
    }
    /// All that the client reads, without what clogged it.
    std::string read() {
        std::string text;
        std::array<char, 65536> bytes;
        for (;;) {
            EXPECT_TRUE(outbox.flush());
            const ssize_t count = ::recv(ends_[1], bytes.data(), bytes.size(), MSG_DONTWAIT);
            if (count <= 0) break;
            text.append(bytes.data(), static_cast<std::size_t>(count));
        }
        const std::size_t dots = text.find_first_not_of('.');
        return text.starts_with('.') ? text.substr(dots + 1) : text;
    }
    int clientEnd() const { return ends_[1]; }

    void update(const std::string& path, const std::string& value, bool isCreation = false) {
        outbox.addChange(updated(path, value), isCreation);
    }
    void remove(const std::string& path) { outbox.addChange(removed(path), false); }

private:
    int open() {
        EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM, 0, ends_.data()), 0);
        return ends_[0];
    }
    std::array<int, 2> ends_{};

protected:
    Outbox outbox;
};

TEST_F(OutboxTest, sendsEverythingInOrderToAClientThatKeepsUp) {
    update("a", "1");
    outbox.addAnswer("answer\n");
    update("a", "2");
    remove("a");
    update("a", "3");
    EXPECT_EQ(read(), "a=1\nanswer\na=2\n-a\na=3\n");
    EXPECT_TRUE(outbox.isEmpty());
}

TEST_F(OutboxTest, sendsTheLastValueInItsPlaceToAClientThatDoesNotKeepUp) {
    clog();
    update("a", "1");
    outbox.addAnswer("first\n");
    update("b", "1");
    update("a", "2");
    outbox.addAnswer("second\n");
    update("b", "2");
    EXPECT_EQ(read(), "first\na=2\nsecond\nb=2\n");
}

TEST_F(OutboxTest, mergesWhatWaitedWhenTheClientFellBehind) {
    outbox.addAnswer(std::string(1 << 20, '.') + '\n');
    update("a", "1");
    update("a", "2");
    outbox.addAnswer("answer\n");
    update("b", "1");
    remove("b");
    EXPECT_TRUE(outbox.flush());
    EXPECT_EQ(read(), "a=2\nanswer\n-b\n");
}

TEST_F(OutboxTest, letsADeleteSupersedeWhatWaitsBelowIt) {
    clog();
    update("c/A/state", "1");
    update("c/A/terms/term/1", "1");
    remove("c/A/terms/term/2");
    update("c/AB/state", "1");
    remove("c/A");
    update("c/A/state", "2", true);
    EXPECT_EQ(read(), "c/AB/state=1\n-c/A\nc/A/state=2\n");
}

TEST_F(OutboxTest, keepsADeleteBeforeWhatWasCreatedAgain) {
    clog();
    remove("t/1");
    update("t/1", "new", true);
    update("t/1", "newer");
    EXPECT_EQ(read(), "-t/1\nt/1=newer\n");
}

TEST_F(OutboxTest, forgetsWhatCameAndWentMeanwhile) {
    clog();
    for (int i = 0; i < 100; ++i) {
        const std::string name = "c/" + std::to_string(i);
        update(name + "/state", "x", true);
        update(name + "/terms/term/1", "x", true);
        remove(name + "/terms/term/1");
        remove(name);
    }
    EXPECT_EQ(read(), "");
}

TEST_F(OutboxTest, takesBackWhatTheClientWasTold) {
    clog();
    remove("c/A");
    update("c/A/state", "again", true);
    remove("c/A");
    EXPECT_EQ(read(), "-c/A\n");
    update("c/B/state", "1", true);
    EXPECT_EQ(read(), "c/B/state=1\n");
    clog();
    update("c/B/state", "2");
    remove("c/B");
    EXPECT_EQ(read(), "-c/B\n");
}

TEST_F(OutboxTest, neverCutsALineThatTheClientHasTheBeginningOf) {
    update("a", std::string(1 << 20, 'x'));
    EXPECT_TRUE(outbox.flush());
    ASSERT_FALSE(outbox.isEmpty());
    update("a", "2");
    update("a", "3");
    remove("a");
    EXPECT_EQ(read(), "a=" + std::string(1 << 20, 'x') + "\n-a\n");
}

TEST_F(OutboxTest, mergesNoMoreOnceTheClientHasCaughtUp) {
    clog();
    EXPECT_EQ(read(), "");
    update("a", "1");
    update("a", "2");
    EXPECT_EQ(read(), "a=1\na=2\n");
}

TEST_F(OutboxTest, takesOneAnswerOfAnySizeAndNoMoreThanTheLimitBehindIt) {
    EXPECT_TRUE(outbox.addAnswer(std::string(2 * Outbox::kMostAnswerBytes, 'x')));
    EXPECT_TRUE(outbox.addAnswer(std::string(Outbox::kMostAnswerBytes, 'x')));
    EXPECT_TRUE(outbox.addAnswer("one byte more"));
    EXPECT_FALSE(outbox.addAnswer("too much"));
    EXPECT_EQ(read().size(), 3 * Outbox::kMostAnswerBytes + 13);
    EXPECT_TRUE(outbox.addAnswer("there is room again"));
}

TEST_F(OutboxTest, noticesThatTheClientHasGone) {
    ::shutdown(clientEnd(), SHUT_RDWR);
    outbox.addAnswer("x\n");
    EXPECT_FALSE(outbox.flush());
}

}  // namespace
}  // namespace QosAgent
