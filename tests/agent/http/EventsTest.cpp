#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "agent/http/EventStream.h"
#include "agent/http/Host.h"
#include "agent/http/StateText.h"

namespace QosAgent::Http {
namespace {

using Texts = std::vector<std::string>;

StateValuePtr classifier(const std::string& name) {
    return std::make_shared<StateValue>(StateValue{name, "IPV4", {}, "{\"c\":1}"});
}
StateValuePtr term(const std::string& name, const std::string& id) {
    StateValue value{name, "", StateTerm{}, "{\"t\":1}"};
    value.term->id = id;
    return std::make_shared<StateValue>(value);
}

std::string textOf(const StateMap& state) {
    StateText text(state);
    std::string all;
    while (text.next(all)) {
    }
    return all;
}

TEST(StateTextTest, writesNamesInTheirOwnOrderNotInThatOfPaths) {
    EXPECT_EQ(textOf({}), "{}");
    StateMap state;
    for (const auto& [path, name] : {std::pair{"a", "a"}, {"a-b", "a-b"}, {"a~1b", "a/b"}})
        state = state.with(std::string("classifier/") + path + "/state", classifier(name));
    state = state.with("classifier/a/terms/term/z", term("a", "z"))
                .with("classifier/a/terms/term/~0", term("a", "~"))
                .with("classifier/\"/terms/term/t", term("\"", "t"));
    EXPECT_EQ(textOf(state), R"({"classifier":{"\"":{"terms":{"term":{"t":{"t":1}}}},)"
                             R"("a":{"state":{"c":1},"terms":{"term":{"z":{"t":1},"~":{"t":1}}}},)"
                             R"("a-b":{"state":{"c":1}},"a/b":{"state":{"c":1}}}})");
    EXPECT_EQ(classifiersOf(state), 4u);
}

class EventStreamTest : public ::testing::Test {
protected:
    void publish(int count) {
        ChangeSet changes;
        changes.after.time = std::chrono::system_clock::time_point(std::chrono::milliseconds(7));
        for (int i = 0; i < count; ++i)
            changes.steps.push_back({"classifier/c/state", nullptr});
        log.add(changes);
    }
    /// The ids that a reader gets, `!` before that of a snapshot.
    static Texts idsOf(EventStream& stream) {
        std::string all;
        char piece[7];
        while (const std::size_t size = stream.read(piece, sizeof piece))
            all.append(piece, size);
        Texts ids;
        for (std::size_t at = 0; (at = all.find("event: ", at)) != std::string::npos; ++at) {
            const std::size_t id = all.find("id: ", at) + 4;
            ids.push_back((all.compare(at + 7, 8, "snapshot") == 0 ? "!" : "") +
                          all.substr(id, all.find('\n', id) - id));
        }
        return ids;
    }
    Texts idsAfter(const std::string& id) const {
        EventStream stream(log, id);
        return idsOf(stream);
    }

    EventLog log{"run", {}};
};

TEST_F(EventStreamTest, goesOnBehindTheLastEventOrStartsOver) {
    publish(3);
    EXPECT_EQ(idsAfter("run-1-0"), (Texts{"run-2-7", "run-3-7"}));
    EXPECT_EQ(idsAfter("run-3-7"), Texts{});
    EXPECT_EQ(idsAfter("run-0-0").size(), 3u);
    for (const char* id :
         {"", "run-4-7", "run", "run-", "run-2", "other-1-0", "run-x-0", "runs-1-0"})
        EXPECT_EQ(idsAfter(id), Texts{"!run-3-7"}) << id;
}

TEST_F(EventStreamTest, keepsTheLast10000Events) {
    publish(EventLog::kMostEvents + 1);
    EXPECT_EQ(idsAfter("run-1-0").size(), EventLog::kMostEvents);
    EXPECT_EQ(idsAfter("run-0-0"), Texts{"!run-10001-7"});
}

TEST_F(EventStreamTest, startsOverAReaderThatFellBehind) {
    EventStream stream(log, "");
    EXPECT_EQ(idsOf(stream), Texts{"!run-0-0"});
    publish(2);
    EXPECT_TRUE(stream.hasNews());
    EXPECT_EQ(stream.waiting(), 2u);
    publish(EventLog::kMostEvents);
    EXPECT_EQ(idsOf(stream), Texts{"!run-10002-7"});
    EXPECT_FALSE(stream.hasNews());
}

TEST_F(EventStreamTest, sendsACommentToAReaderForWhomThereIsNothingElse) {
    EventStream stream(log, "run-0-0");
    char text[9];
    EXPECT_EQ(stream.read(text, sizeof text), 0u);
    stream.ping();
    EXPECT_EQ(std::string(text, stream.read(text, sizeof text)), ":\n\n");
    EXPECT_EQ(stream.read(text, sizeof text), 0u);
}

TEST(HostTest, knowsTheNamesOfThisMachineWithAnyPort) {
    for (const char* host : {"localhost", "LocalHost:80", "127.0.0.1", "127.0.0.1:", "[::1]:65536"})
        EXPECT_TRUE(isThisMachine(host)) << host;
    for (const char* host : {"", "local", "localhost.", "localhost:80x", "localhost@evil",
                             "127.0.0.10", "127.0.0.1.evil", "[::1", "[::1]evil", "evil:localhost"})
        EXPECT_FALSE(isThisMachine(host)) << host;
}

}  // namespace
}  // namespace QosAgent::Http
