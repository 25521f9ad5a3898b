#include <gmock/gmock.h>
#include <gnmi.pb.h>

#include "agent/gnmi/Difference.h"
#include "agent/gnmi/Messages.h"
#include "agent/gnmi/Stream.h"
#include "tests/agent/gnmi/Messages.h"
#include "tests/agent/gnmi/Trees.h"

namespace QosAgent::Gnmi {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

OrRefusal<SubscriptionList> listOf(const std::string& text) {
    return subscriptionsOf(message<gnmi::SubscribeRequest>(text));
}

std::string refusalOf(const std::string& text) {
    const auto list = listOf("subscribe { " + text + " }");
    const auto* refusal = std::get_if<Refusal>(&list);
    return refusal == nullptr
               ? ""
               : std::to_string(static_cast<int>(refusal->code)) + " " + refusal->message;
}

std::string subscription(std::string_view path, const std::string& rest = {}) {
    return "subscription { path { " + elements(path) + "} " + rest + "} ";
}

TEST(SubscriptionsTest, refusesLists) {
    EXPECT_THAT(refusalOf(""), HasSubstr("3 a list without a subscription"));
    EXPECT_THAT(refusalOf(subscription("/interfaces")), HasSubstr("12 /interfaces"));
    EXPECT_THAT(refusalOf(subscription("/qos[a=b]")), HasSubstr("3 "));
    EXPECT_THAT(refusalOf(subscription("/qos") + "encoding: BYTES"), HasSubstr("12 "));
    EXPECT_THAT(refusalOf(subscription("/qos") + "use_models { name: 'x' }"), HasSubstr("12 "));
    EXPECT_THAT(refusalOf(subscription("/qos", "mode: TARGET_DEFINED sample_interval: 1000000000")),
                HasSubstr("3 /qos: sample_interval"));
    EXPECT_EQ(refusalOf(subscription("/qos") + "qos { marking: 7 }"), "");
    EXPECT_THAT(std::get<Refusal>(listOf("poll { }")).message, HasSubstr("first message"));
}

TEST(SubscriptionsTest, takesAtMost64Subscriptions) {
    std::string list;
    for (int at = 0; at < 64; ++at)
        list += subscription("/qos");
    EXPECT_EQ(refusalOf(list), "");
    EXPECT_THAT(refusalOf(list + subscription("/qos")), HasSubstr("3 more than 64"));
}

TEST(SubscriptionsTest, takesIntervalsFrom100MillisecondsOn) {
    const auto sampled = [](const std::string& interval) {
        return refusalOf(subscription("/qos", "mode: SAMPLE sample_interval: " + interval));
    };
    EXPECT_EQ(sampled("0"), "");
    EXPECT_EQ(sampled("100000000"), "");
    EXPECT_THAT(sampled("99999999"), HasSubstr("3 /qos: sample_interval"));
    EXPECT_EQ(sampled("18446744073709551615"), "");
    EXPECT_THAT(refusalOf(subscription("/qos", "mode: ON_CHANGE heartbeat_interval: 1")),
                HasSubstr("3 /qos: heartbeat_interval"));
    EXPECT_EQ(refusalOf("mode: ONCE " + subscription("/qos", "mode: SAMPLE sample_interval: 1")),
              "");
}

TEST(SubscriptionsTest, sharesWhatIsAskedForInTheSameWay) {
    const auto key = [](const std::string& text) {
        return std::get<SubscriptionList>(listOf("subscribe { " + text + " }")).sharedKey;
    };
    EXPECT_EQ(key(subscription("/qos")), key(subscription("/qos", "mode: ON_CHANGE")));
    EXPECT_NE(key(subscription("/qos")), key(subscription("/qos/queues")));
    EXPECT_NE(key(subscription("/qos")), key(subscription("/qos") + "encoding: PROTO"));
    EXPECT_NE(key(subscription("/qos")), key(subscription("/qos") + "prefix { target: 't' }"));
}

class StreamTest : public testing::Test {
protected:
    using Clock = Stream::Clock;

    void open(const std::string& list) {
        stream.emplace(std::get<SubscriptionList>(listOf("subscribe { " + list + " }")), counters);
        stream->setWake([] {});
        stream->begin(tree.build(), start);
    }
    /// All that the stream has to say: `PATH=JSON`, `-PATH`, `sync`.
    Lines take() {
        Lines lines;
        while (const Bytes bytes = stream->next())
            for (std::string& line : linesOf(*bytes))
                lines.push_back(std::move(line));
        return lines;
    }
    static Lines linesOf(const std::string& bytes) {
        gnmi::SubscribeResponse response;
        EXPECT_TRUE(response.ParseFromString(bytes));
        if (response.sync_response()) return {"sync"};
        Lines lines;
        for (const auto& path : response.update().delete_())
            lines.push_back("-" + lastOf(path));
        for (const auto& update : response.update().update())
            lines.push_back(lastOf(update.path()) + "=" + update.val().json_val());
        return lines;
    }
    static std::string lastOf(const gnmi::Path& path) {
        return path.elem_size() == 0 ? "/" : path.elem(path.elem_size() - 1).name();
    }
    void change(const std::string& type) {
        const auto before = tree.build();
        tree.at(++timestamp).classifier("c", type);
        Touched touched;
        touched.entries.insert({&classifierList(), {"c"}});
        const auto notices = difference(*before, *tree.build(), touched);
        for (const Notice& notice : notices) {
            if (stream->list().onChange.patterns.empty()) break;
            stream->publish(std::make_shared<const Delivery>(
                Delivery{notice, serialised(notice, Encoding::json, "")}));
        }
        stream->collect(notices, *before);
    }
    void tick(milliseconds sinceStart) { stream->tick(tree.build(), start + sinceStart); }

    std::int64_t timestamp = 1;
    TreeBuilder tree = TreeBuilder().at(1).classifier("c");
    Clock::time_point start = Clock::time_point(seconds(100));
    StreamCounters counters;
    std::optional<Stream> stream;
};

TEST_F(StreamTest, endsOnceAfterValuesAndSync) {
    open("mode: ONCE " + subscription("/qos"));
    EXPECT_EQ(stream->end(), std::nullopt);
    EXPECT_THAT(take(), ElementsAre("name=\"c\"", "type=\"IPV4\"", "sync"));
    EXPECT_EQ(stream->end()->code, Code::ok);
}

TEST_F(StreamTest, sendsNothingForAnAbsentPathButSyncs) {
    open("mode: ONCE " + subscription("/qos/classifiers/classifier[name=none]"));
    EXPECT_THAT(take(), ElementsAre("sync"));
}

TEST_F(StreamTest, answersEachPollWithValuesAndOneSync) {
    open("mode: POLL " + subscription("/qos"));
    EXPECT_THAT(take(), ElementsAre("name=\"c\"", "type=\"IPV4\"", "sync"));
    EXPECT_THAT(take(), IsEmpty());
    stream->poll(tree.classifier("c", "IPV6").build());
    EXPECT_THAT(take(), ElementsAre("name=\"c\"", "type=\"IPV6\"", "sync"));
    EXPECT_EQ(stream->end(), std::nullopt);
}

TEST_F(StreamTest, sendsOneSyncForAllSubscriptionsAndEachLeafOnce) {
    open(subscription("/qos/classifiers") + subscription("/qos") +
         subscription("/.../state/name", "mode: SAMPLE sample_interval: 1000000000"));
    EXPECT_THAT(take(), ElementsAre("name=\"c\"", "type=\"IPV4\"", "sync"));
}

TEST_F(StreamTest, sendsChangesOnlyAfterTheSync) {
    open(subscription("/qos", "mode: ON_CHANGE"));
    change("IPV6");
    EXPECT_THAT(take(), ElementsAre("name=\"c\"", "type=\"IPV4\"", "sync", "type=\"IPV6\""));
    EXPECT_THAT(take(), IsEmpty());
}

TEST_F(StreamTest, beginsWithTheSyncWhenOnlyUpdatesAreWanted) {
    open(subscription("/qos") + "updates_only: true");
    change("IPV6");
    EXPECT_THAT(take(), ElementsAre("sync", "type=\"IPV6\""));
}

TEST_F(StreamTest, sendsEverythingAgainAtEachHeartbeat) {
    open(subscription("/qos", "mode: ON_CHANGE heartbeat_interval: 1000000000"));
    take();
    EXPECT_EQ(stream->nextDue(), start + seconds(1));
    tick(milliseconds(999));
    EXPECT_THAT(take(), IsEmpty());
    tick(milliseconds(1000));
    EXPECT_THAT(take(), ElementsAre("name=\"c\"", "type=\"IPV4\""));
    EXPECT_EQ(stream->nextDue(), start + seconds(2));
}

TEST_F(StreamTest, samplesAllValuesAtEachInterval) {
    open(subscription("/qos", "mode: SAMPLE"));
    take();
    tree.classifier("c", "IPV6");
    tick(milliseconds(100));
    EXPECT_THAT(take(), ElementsAre("name=\"c\"", "type=\"IPV6\""));
}

TEST_F(StreamTest, skipsASampleWhileAnotherIsBeingSent) {
    open(subscription("/qos", "mode: SAMPLE"));
    take();
    for (int at = 1; at <= 5; ++at)
        tick(milliseconds(100 * at));
    EXPECT_THAT(take(), ElementsAre("name=\"c\"", "type=\"IPV4\""));
    tick(milliseconds(5000));
    EXPECT_EQ(stream->nextDue(), start + milliseconds(5100));
    EXPECT_THAT(take(), ElementsAre("name=\"c\"", "type=\"IPV4\""));
}

TEST_F(StreamTest, samplesOnlyWhatChangedWhenTheRestIsRedundant) {
    open(subscription("/qos", "mode: SAMPLE sample_interval: 1000000000 suppress_redundant: true"));
    take();
    tick(seconds(1));
    EXPECT_THAT(take(), IsEmpty());
    change("IPV6");
    EXPECT_THAT(take(), IsEmpty());
    tick(seconds(2));
    EXPECT_THAT(take(), ElementsAre("type=\"IPV6\""));
    tick(seconds(3));
    EXPECT_THAT(take(), IsEmpty());
}

TEST_F(StreamTest, takesAValueForRedundantThatIsTheSameAgain) {
    open(subscription("/qos", "mode: SAMPLE sample_interval: 1000000000 suppress_redundant: true"));
    take();
    change("IPV6");
    change("IPV4");
    tick(seconds(1));
    EXPECT_THAT(take(), IsEmpty());
    EXPECT_EQ(counters.waitingBytes, 0u);
    change("IPV6");
    tick(seconds(2));
    EXPECT_THAT(take(), ElementsAre("type=\"IPV6\""));
}

TEST_F(StreamTest, sendsRedundantValuesAtHeartbeats) {
    open(subscription("/qos",
                      "mode: SAMPLE sample_interval: 1000000000 suppress_redundant: true "
                      "heartbeat_interval: 3000000000"));
    take();
    tick(seconds(1));
    EXPECT_THAT(take(), IsEmpty());
    tick(seconds(3));
    EXPECT_THAT(take(), ElementsAre("name=\"c\"", "type=\"IPV4\""));
}

TEST_F(StreamTest, endsWhenTooMuchWaits) {
    open(subscription("/qos"));
    const std::string large(std::size_t{1} << 20, 'x');
    for (int at = 0; at < 17; ++at) {
        Notice notice{
            1,
            {},
            {{{&schemaNode("/qos/queues/queue/config/name"), {std::to_string(at)}}, large, 0}}};
        stream->publish(std::make_shared<const Delivery>(Delivery{notice, large}));
    }
    EXPECT_EQ(stream->end()->code, Code::resourceExhausted);
}

TEST_F(StreamTest, endsWhenTooMuchWaitsInAllStreams) {
    open(subscription("/qos"));
    counters.waitingBytes = Stream::kMostBytesOfAll;
    change("IPV6");
    EXPECT_EQ(stream->end()->code, Code::resourceExhausted);
    counters.waitingBytes = 0;
}

}  // namespace
}  // namespace QosAgent::Gnmi
