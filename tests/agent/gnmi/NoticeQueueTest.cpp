#include <gmock/gmock.h>

#include "agent/gnmi/NoticeQueue.h"
#include "tests/agent/gnmi/Trees.h"

namespace QosAgent::Gnmi {
namespace {

using testing::ElementsAre;

const SchemaNode& idLeaf() {
    return *termList().child("state")->child("id");
}

const SchemaNode& dscpLeaf() {
    return *termList().child("conditions")->child("ipv4")->child("state")->child("dscp");
}

DataPath termPath(const std::string& id) {
    return {&termList(), {"c", id}};
}

Notice dscp(std::int64_t timestamp, const std::string& id, int value) {
    return {timestamp, {}, {{{&dscpLeaf(), {"c", id}}, std::to_string(value), 0}}};
}

class NoticeQueueTest : public testing::Test {
protected:
    void put(Notice notice, std::size_t bytes = 10) {
        queue.put(
            std::make_shared<const Delivery>(Delivery{std::move(notice), std::string(bytes, 'x')}));
    }
    /// Fills the queue so that whatever is put next is merged.
    void fallBehind() {
        for (std::size_t at = 0; at <= NoticeQueue::kMostSeparate; ++at)
            put({0, {}, {{{&idLeaf(), {"c", "filler"}}, "\"f\"", 0}}});
    }
    Lines merged() {
        Lines all;
        while (const auto notice = queue.takeMerged())
            for (std::string& line : lines(*notice))
                if (line.find("filler") == std::string::npos && line != "@0")
                    all.push_back(std::move(line));
        return all;
    }

    StreamCounters counters;
    NoticeQueue queue{counters};
    const std::string dscpOf = "/qos/classifiers/classifier[name=c]/terms/term[id=";
};

TEST_F(NoticeQueueTest, givesNoticesOutOneByOneWhileTheReaderKeepsUp) {
    put(dscp(1, "t", 1));
    put(dscp(2, "t", 2));
    EXPECT_EQ(lines(queue.takeSeparate()->notice), lines(dscp(1, "t", 1)));
    EXPECT_EQ(lines(queue.takeSeparate()->notice), lines(dscp(2, "t", 2)));
    EXPECT_EQ(queue.takeSeparate(), nullptr);
    EXPECT_EQ(queue.takeMerged(), std::nullopt);
    EXPECT_EQ(counters.waitingBytes, 0u);
}

TEST_F(NoticeQueueTest, keepsTheLastValueAndCountsTheOthersWhenTheReaderFallsBehind) {
    fallBehind();
    for (int value = 1; value <= 5; ++value)
        put(dscp(value, "t", value));
    EXPECT_EQ(queue.takeSeparate(), nullptr);
    EXPECT_THAT(merged(), ElementsAre("@5", dscpOf + "t]/conditions/ipv4/state/dscp=5 +4"));
    EXPECT_TRUE(queue.isEmpty());
    EXPECT_EQ(counters.waitingBytes, 0u);
}

TEST_F(NoticeQueueTest, countsEveryChangeOnceInUpdatesAndDuplicates) {
    constexpr int kChanges = 1000;
    for (int value = 0; value < kChanges; ++value)
        put(dscp(value, "t", value));
    std::uint64_t counted = 0;
    while (const auto delivery = queue.takeSeparate())
        for (const auto& update : delivery->notice.updates)
            counted += 1 + update.duplicates;
    while (const auto notice = queue.takeMerged())
        for (const auto& update : notice->updates)
            counted += 1 + update.duplicates;
    EXPECT_EQ(counted, kChanges);
}

TEST_F(NoticeQueueTest, mergesAlsoWhenFewNoticesTakeMuchMemory) {
    put(dscp(1, "t", 1), NoticeQueue::kMostSeparateBytes);
    put(dscp(2, "t", 2));
    EXPECT_EQ(queue.takeSeparate(), nullptr);
    EXPECT_THAT(merged(), ElementsAre("@2", dscpOf + "t]/conditions/ipv4/state/dscp=2 +1"));
}

TEST_F(NoticeQueueTest, forgetsValuesBelowADelete) {
    fallBehind();
    put(dscp(1, "t", 1));
    put(dscp(1, "u", 1));
    put({2, {termPath("t")}, {}});
    EXPECT_THAT(merged(), ElementsAre("@2", "-" + dscpOf + "t]", "@1",
                                      dscpOf + "u]/conditions/ipv4/state/dscp=1"));
}

TEST_F(NoticeQueueTest, forgetsDeletesBelowADelete) {
    fallBehind();
    put({1, {termPath("t")}, {}});
    put({2, {{termList().parent(), {"c"}}}, {}});
    EXPECT_THAT(merged(), ElementsAre("@2", "-/qos/classifiers/classifier[name=c]/terms"));
}

TEST_F(NoticeQueueTest, sendsADeleteBeforeWhatWasCreatedAgain) {
    fallBehind();
    put(dscp(1, "t", 1));
    put({2, {termPath("t")}, {}});
    put(dscp(3, "t", 3));
    EXPECT_THAT(merged(), ElementsAre("@2", "-" + dscpOf + "t]", "@3",
                                      dscpOf + "t]/conditions/ipv4/state/dscp=3"));
}

TEST_F(NoticeQueueTest, groupsWhatIsMergedByEntry) {
    fallBehind();
    put({1, {}, {{{&idLeaf(), {"c", "t"}}, "\"t\"", 0}}});
    put(dscp(2, "u", 2));
    put(dscp(3, "t", 3));
    EXPECT_THAT(merged(), ElementsAre("@3", dscpOf + "t]/state/id=\"t\"",
                                      dscpOf + "t]/conditions/ipv4/state/dscp=3", "@2",
                                      dscpOf + "u]/conditions/ipv4/state/dscp=2"));
}

TEST_F(NoticeQueueTest, takesMemoryForLeavesAndNotForChanges) {
    for (int value = 0; value < 100'000; ++value)
        put(dscp(value, std::to_string(value % 10), value));
    EXPECT_LT(queue.bytes(), 8192u);
    EXPECT_EQ(counters.waitingBytes, queue.bytes());
}

TEST_F(NoticeQueueTest, givesItsMemoryBackAtItsEnd) {
    {
        NoticeQueue other(counters);
        other.put(std::make_shared<const Delivery>(Delivery{dscp(1, "t", 1), "bytes"}));
        EXPECT_EQ(counters.waitingBytes, 5u);
    }
    EXPECT_EQ(counters.waitingBytes, 0u);
}

}  // namespace
}  // namespace QosAgent::Gnmi
