#include <gmock/gmock.h>

#include <utility>
#include <vector>

#include "agent/service/ConfirmedCommits.h"

namespace QosAgent {
namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::IsEmpty;

/// A loop whose one timer elapses when the test says so.
class StillLoop final : public Loop {
public:
    WatchPtr watch(int, bool, bool, Task) override { return nullptr; }
    SourcePtr onSignal(int, Task) override { return nullptr; }
    SourcePtr after(milliseconds time, Task handler) override {
        time_ = time;
        handler_ = std::move(handler);
        return std::make_unique<Timer>(*this);
    }
    void post(Task) override {}
    void run() override {}
    void stop() override {}
    void notify(const std::string&) override {}
    void feedWatchdog() override {}

    bool isWaiting() const { return handler_ != nullptr; }
    milliseconds time() const { return time_; }
    void elapse() {
        const Task handler = handler_;
        handler();
    }

private:
    struct Timer final : Source {
        explicit Timer(StillLoop& loop) : loop_(loop), time_(loop.time_) {}
        ~Timer() override {
            if (loop_.time_ == time_) loop_.handler_ = nullptr;
        }
        StillLoop& loop_;
        milliseconds time_;
    };

    milliseconds time_{};
    Task handler_;
};

class ConfirmedCommitsTest : public testing::Test {
protected:
    Answer commit(CommitAction::Kind kind, const std::string& id, milliseconds time = {},
                  const std::string& line = {}) {
        return commits.apply({line, "gnmi", CommitAction{kind, id, time}});
    }
    Answer begin() { return commit(Kind::begin, "a", milliseconds(7), R"({"configure":[1]})"); }
    std::string refusalOf(const std::string& line) {
        const Answer answer = commits.apply({line, "socket"});
        return answer.refused ? answer.refused->message : "";
    }

    using Kind = CommitAction::Kind;
    std::vector<std::string> applied;
    std::optional<Remark> refusal;
    StillLoop loop;
    ConfirmedCommits commits{loop, [this](const Request& request) {
                                 Answer answer;
                                 if (request.line == R"({"print":"configuration"})") {
                                     answer.lines = {"{\"old\":1}"};
                                     return answer;
                                 }
                                 answer.refused = refusal;
                                 if (!refusal) applied.push_back(request.line);
                                 return answer;
                             }};
    const std::string back = R"({"configure":[{"replace":"/","value":{"old":1}}]})";
};

TEST_F(ConfirmedCommitsTest, takesACommitBackThatIsNotConfirmedInTime) {
    EXPECT_EQ(begin(), Answer{});
    EXPECT_EQ(loop.time(), milliseconds(7));
    EXPECT_THAT(applied, ElementsAre(R"({"configure":[1]})"));
    loop.elapse();
    EXPECT_THAT(applied, ElementsAre(R"({"configure":[1]})", back));
    EXPECT_EQ(refusalOf(R"({"configure":[]})"), "");
}

TEST_F(ConfirmedCommitsTest, keepsWhatIsConfirmed) {
    begin();
    EXPECT_EQ(commit(Kind::confirm, "a"), Answer{});
    EXPECT_FALSE(loop.isWaiting());
    EXPECT_THAT(applied, ElementsAre(R"({"configure":[1]})"));
}

TEST_F(ConfirmedCommitsTest, takesBackAtOnceWhatIsCancelled) {
    begin();
    EXPECT_EQ(commit(Kind::cancel, "a"), Answer{});
    EXPECT_FALSE(loop.isWaiting());
    EXPECT_THAT(applied, ElementsAre(R"({"configure":[1]})", back));
}

TEST_F(ConfirmedCommitsTest, beginsTheTimeAnewWhenPostponed) {
    begin();
    EXPECT_EQ(commit(Kind::postpone, "a", milliseconds(99)), Answer{});
    EXPECT_TRUE(loop.isWaiting());
    EXPECT_EQ(loop.time(), milliseconds(99));
}

TEST_F(ConfirmedCommitsTest, refusesOtherEditsWhileACommitWaits) {
    EXPECT_EQ(refusalOf(R"({"configure":[]})"), "");
    begin();
    EXPECT_EQ(refusalOf(R"( { "configure" : [] } )"), "commit \"a\" waits for its confirmation");
    EXPECT_EQ(refusalOf(R"({"openconfig":{}})"), "commit \"a\" waits for its confirmation");
    EXPECT_TRUE(commits.apply({R"({"openconfig":{}})", "-"}).isConflict);
    EXPECT_EQ(refusalOf(R"({"update":"qos/status","value":{}})"), "");
    EXPECT_EQ(refusalOf(""), "");
    EXPECT_TRUE(begin().isConflict);
}

TEST_F(ConfirmedCommitsTest, refusesActionsThatMeetNoCommitOfTheirs) {
    EXPECT_TRUE(commit(Kind::confirm, "a").isConflict);
    begin();
    const Answer answer = commit(Kind::cancel, "b");
    EXPECT_EQ(answer.refused->message, "the commit that waits is \"a\", not \"b\"");
    EXPECT_FALSE(answer.isConflict);
    EXPECT_TRUE(loop.isWaiting());
}

TEST_F(ConfirmedCommitsTest, waitsForNothingWhenTheCommitItselfIsRefused) {
    refusal = Remark{1, "bad", 0};
    EXPECT_EQ(begin().refused, refusal);
    EXPECT_FALSE(loop.isWaiting());
    EXPECT_THAT(applied, IsEmpty());
}

TEST_F(ConfirmedCommitsTest, tellTheirKeeperWhatWaits) {
    std::vector<std::string> kept;
    commits.keeperIs([&](const WaitingCommit* waiting) {
        kept.push_back(waiting == nullptr ? "nothing" : waiting->id + ' ' + waiting->before);
    });
    begin();
    commit(Kind::postpone, "a", milliseconds(9));
    commit(Kind::confirm, "a");
    EXPECT_THAT(kept, ElementsAre("a {\"old\":1}", "a {\"old\":1}", "nothing"));
    kept.clear();
    begin();
    loop.elapse();
    EXPECT_THAT(kept, ElementsAre("a {\"old\":1}", "nothing"));
}

TEST_F(ConfirmedCommitsTest, goOnAfterARestart) {
    commits.resume({"a", "{\"old\":1}", std::chrono::system_clock::now() + std::chrono::hours(1)});
    EXPECT_THAT(applied, IsEmpty());
    EXPECT_NE(refusalOf(R"({"configure":[]})"), "");
    EXPECT_TRUE(loop.isWaiting());
    loop.elapse();
    EXPECT_THAT(applied, ElementsAre(back));
}

TEST_F(ConfirmedCommitsTest, areTakenBackAtARestartPastTheirTime) {
    commits.resume({"a", "{\"old\":1}", std::chrono::system_clock::now()});
    EXPECT_THAT(applied, ElementsAre(back));
    EXPECT_EQ(refusalOf(R"({"configure":[]})"), "");
}

}  // namespace
}  // namespace QosAgent
