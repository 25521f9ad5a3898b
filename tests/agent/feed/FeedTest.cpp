#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "agent/feed/Feed.h"
#include "platform/QosOc/State/ClassifiersDir.h"
#include "tests/agent/support/TextDatabase.h"

namespace QosAgent {
namespace {

using QosOc::Classifier::Type;
using Texts = std::vector<std::string>;

/// `PATH = JSON`, of each entry.
Texts entriesOf(const StateMap& map) {
    Texts entries;
    for (const auto* at = map.firstFrom(""); at != nullptr; at = map.firstAfter(at->path))
        entries.push_back(at->path + " = " + at->value->json);
    return entries;
}

/// `- PATH` for a delete, `PATH xN` for an update of N values.
Texts outcomeOf(const ChangeSet& changes) {
    Texts outcome;
    for (const std::string& path : changes.deletes)
        outcome.push_back("- " + path);
    for (const ChangeSet::Update& update : changes.updates)
        outcome.push_back(update.path + " x" + std::to_string(update.values));
    return outcome;
}

/// `- PATH` for a delete, `PATH = JSON` for an update.
Texts stepsOf(const ChangeSet& changes) {
    Texts steps;
    for (const ChangeSet::Step& step : changes.steps)
        steps.push_back(step.value ? step.path + " = " + step.value->json : "- " + step.path);
    return steps;
}

class Lines : public ChangeListener {
public:
    void changed(const Change& change) override { lines.emplace_back(change.line()); }
    Texts lines;
};

class FeedTest : public ::testing::Test {
protected:
    FeedTest()
        : tree(Vex::entityCast<QosOc::State::ClassifiersDir>(db.database.stateTree().root)),
          feed(db.database) {}

    void classifier(const Orin::String& name, Type type = Type::IPV4) {
        tree->classifierIs(name)->stateIs({name, type});
    }
    void term(const Orin::String& name, const Orin::String& id, const Orin::String& group) {
        QosOc::State::Term term(id);
        term.actions.emplace().targetGroup = group;
        tree->classifierIs(name)->termsIs()->termIs(term);
    }
    /// The one change set that waits.
    ChangeSetPtr only(Subscription& subscription) {
        const auto waiting = subscription.take();
        EXPECT_EQ(waiting.size(), 1u);
        return waiting.empty() ? std::make_shared<ChangeSet>() : waiting.front();
    }

    TextDatabase db;
    Orin::Ptr<QosOc::State::ClassifiersDir> tree;
    Feed feed;
};

TEST_F(FeedTest, notifiesListenersOfEachChangeUntilTheyAreRemoved) {
    Lines first;
    Lines second;
    feed.listenerIs(first);
    feed.listenerIs(first);
    feed.listenerIs(second);
    classifier("C");
    feed.listenerDel(first);
    classifier("C", Type::IPV6);
    feed.listenerDel(second);
    classifier("C", Type::IPV4);
    const std::string lead =
        R"({"update":"qos/openconfig/state/classifiers/classifier/C/state","value":{"name":"C",)";
    EXPECT_EQ(first.lines, (Texts{lead + R"("type":"IPV4"}})"}));
    EXPECT_EQ(second.lines, (Texts{lead + R"("type":"IPV4"}})", lead + R"("type":"IPV6"}})"}));
}

TEST_F(FeedTest, keepsTheStateThatIsThereAlready) {
    classifier("a/b~", Type::IPV6);
    Lines lines;
    feed.listenerIs(lines);
    feed.keepState();
    EXPECT_EQ(lines.lines, Texts{});
    const Snapshot snapshot = feed.snapshot();
    EXPECT_EQ(entriesOf(snapshot.state),
              Texts{R"(classifier/a~1b~0/state = {"name":"a/b~","type":"IPV6"})"});
    EXPECT_EQ(snapshot.state.firstFrom("")->value->classifier, "a/b~");
    EXPECT_EQ(snapshot.state.firstFrom("")->value->type, "IPV6");
}

TEST_F(FeedTest, keepsTermsAsPlainData) {
    feed.keepState();
    QosOc::State::Term term("T");
    term.stateId = "S";
    term.conditions.emplace().ipv4.dscp = 46;
    term.conditions->ipv6.dscpSetPush(8);
    term.conditions->ipv6.dscpSetPush(0);
    term.actions.emplace().targetGroup = "gold";
    tree->classifierIs("state")->termsIs()->termIs(term);
    feed.endRequest();
    const StateValuePtr value = feed.snapshot().state.find("classifier/state/terms/term/T");
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(*value,
              (StateValue{"state", "", StateTerm{"T", "S", true, {46, {}}, {{}, {8, 0}}, "gold"},
                          R"({"id":"T","stateId":"S","conditions":{"ipv4":{"dscp":46},)"
                          R"("ipv6":{"dscpSet":[8,0]}},"actions":{"targetGroup":"gold"}})"}));
    term.conditions.reset();
    term.actions.reset();
    tree->classifierIs("state")->termsIs()->termIs(term);
    feed.endRequest();
    EXPECT_EQ(feed.snapshot().state.find("classifier/state/terms/term/T")->term,
              (StateTerm{"T", "S", false, {}, {}, {}}));
}

TEST_F(FeedTest, startsASubscriptionWithTheStateAndThenTellsEachOutcome) {
    feed.keepState();
    classifier("old");
    feed.endRequest();
    int wakes = 0;
    const auto subscription = feed.subscribe([&wakes] { ++wakes; });
    EXPECT_EQ(subscription->start().state.size(), 1u);
    classifier("new");
    classifier("new", Type::IPV6);
    tree->classifierDel("old");
    feed.endRequest();
    EXPECT_EQ(wakes, 1);
    const ChangeSetPtr changes = only(*subscription);
    EXPECT_EQ(outcomeOf(*changes), (Texts{"- classifier/old", "classifier/new/state x2"}));
    EXPECT_EQ(changes->updates.front().value->type, "IPV6");
    EXPECT_EQ(changes->before.sequence + 1, changes->after.sequence);
    EXPECT_LE(changes->before.time, changes->after.time);
    EXPECT_TRUE(subscription->take().empty());
}

TEST_F(FeedTest, tellsEachPublishedChangeBesideTheOutcome) {
    feed.keepState();
    const auto subscription = feed.subscribe([] {});
    classifier("brief");
    classifier("brief", Type::IPV6);
    tree->classifierDel("brief");
    feed.endRequest();
    const ChangeSetPtr changes = only(*subscription);
    EXPECT_EQ(outcomeOf(*changes), Texts{});
    EXPECT_EQ(stepsOf(*changes),
              (Texts{R"(classifier/brief/state = {"name":"brief","type":"IPV4"})",
                     R"(classifier/brief/state = {"name":"brief","type":"IPV6"})",
                     "- classifier/brief"}));
}

TEST_F(FeedTest, countsChangesReadersAndWhatWaitsForThem) {
    EXPECT_EQ(feed.statistics(), FeedStatistics{});
    feed.keepState();
    const auto reader = feed.subscribe([] {});
    const auto slow = feed.subscribe([] {});
    for (std::size_t i = 0; i < Mailbox::kMostWaiting; ++i) {
        classifier("C", i % 2 == 0 ? Type::IPV4 : Type::IPV6);
        feed.endRequest();
    }
    reader->take();
    tree->classifierDel("C");
    feed.endRequest();
    // All that waited for the slow one has become one value.
    EXPECT_EQ(feed.statistics(),
              (FeedStatistics{Mailbox::kMostWaiting, 1, 2, 1 + 2, Mailbox::kMostWaiting - 1}));
    EXPECT_EQ(stepsOf(*slow->take().front()),
              Texts{R"(classifier/C/state = {"name":"C","type":"IPV6"})"});
}

TEST_F(FeedTest, tellsDeletesOfTheHighestNodeAndOfWhatWasThereOnly) {
    feed.keepState();
    classifier("C");
    term("C", "1", "g");
    term("C", "2", "g");
    feed.endRequest();
    const auto subscription = feed.subscribe([] {});
    tree->classifier("C")->terms()->termDel("1");
    tree->classifier("C")->termsDel();
    classifier("brief");
    tree->classifierDel("brief");
    feed.endRequest();
    EXPECT_EQ(outcomeOf(*only(*subscription)), Texts{"- classifier/C/terms"});
    term("C", "2", "again");
    tree->classifierDel("C");
    term("C", "3", "g");
    feed.endRequest();
    EXPECT_EQ(outcomeOf(*only(*subscription)),
              (Texts{"- classifier/C", "classifier/C/terms/term/3 x1"}));
}

TEST_F(FeedTest, tellsNobodyOfARequestThatChangedNothing) {
    feed.keepState();
    int wakes = 0;
    const auto subscription = feed.subscribe([&wakes] { ++wakes; });
    const std::uint64_t before = feed.snapshot().sequence;
    feed.endRequest();
    EXPECT_EQ(feed.snapshot().sequence, before + 1);
    EXPECT_EQ(wakes, 0);
    EXPECT_TRUE(subscription->take().empty());
}

TEST_F(FeedTest, wakesOnceUntilTheReaderHasTaken) {
    feed.keepState();
    int wakes = 0;
    const auto subscription = feed.subscribe([&wakes] { ++wakes; });
    for (const char* name : {"a", "b"}) {
        classifier(name);
        feed.endRequest();
    }
    EXPECT_EQ(wakes, 1);
    EXPECT_EQ(subscription->take().size(), 2u);
    classifier("c");
    feed.endRequest();
    EXPECT_EQ(wakes, 2);
}

TEST_F(FeedTest, mergesForAReaderThatFallsBehind) {
    feed.keepState();
    term("C", "gone", "g");
    feed.endRequest();
    const auto subscription = feed.subscribe([] {});
    tree->classifier("C")->terms()->termDel("gone");
    feed.endRequest();
    for (std::size_t i = 0; i < 3 * Mailbox::kMostWaiting; ++i) {
        term("C", "busy", Orin::String(std::to_string(i)));
        const Orin::String name("brief-" + std::to_string(i));
        classifier(name);
        feed.endRequest();
        tree->classifierDel(name);
        feed.endRequest();
    }
    std::uint64_t values = 0;
    Texts deletes;
    std::size_t others = 0;
    const auto waiting = subscription->take();
    EXPECT_LE(waiting.size(), Mailbox::kMostWaiting);
    for (const ChangeSetPtr& changes : waiting) {
        for (const std::string& path : changes->deletes)
            if (!path.starts_with("classifier/brief")) deletes.push_back(path);
        for (const ChangeSet::Update& update : changes->updates)
            (update.path == "classifier/C/terms/term/busy" ? values : others) += update.values;
    }
    EXPECT_EQ(values, 3 * Mailbox::kMostWaiting);
    EXPECT_EQ(deletes, Texts{"classifier/C/terms/term/gone"});
    // Of all that came and went while nobody read, the merged part says nothing.
    EXPECT_LE(waiting.front()->updates.size(), 2u);
    EXPECT_EQ(waiting.front()->deletes.size(), 1u);
    EXPECT_LT(others, Mailbox::kMostWaiting);
    EXPECT_EQ(waiting.back()->after.sequence, feed.snapshot().sequence);
}

TEST_F(FeedTest, wakesNobodyWhoseSubscriptionHasEnded) {
    feed.keepState();
    int wakes = 0;
    feed.subscribe([&wakes] { ++wakes; }).reset();
    classifier("C");
    feed.endRequest();
    EXPECT_EQ(wakes, 0);
}

/// A copy of the state, held by what a subscription tells.
void play(std::map<std::string, std::string>& copy, const ChangeSet& changes) {
    for (const std::string& gone : changes.deletes)
        std::erase_if(copy, [&](const auto& entry) { return isAtOrBelow(entry.first, gone); });
    for (const ChangeSet::Update& update : changes.updates)
        copy[update.path] = update.value->json;
}

std::map<std::string, std::string> copyOf(const StateMap& map) {
    std::map<std::string, std::string> copy;
    for (const auto* at = map.firstFrom(""); at != nullptr; at = map.firstAfter(at->path))
        copy[at->path] = at->value->json;
    return copy;
}

TEST_F(FeedTest, leavesNoGapAndNoOverlapForReadersOnOtherThreads) {
    feed.keepState();
    std::atomic<bool> isOver{false};
    std::atomic<int> failures{0};
    const auto read = [&] {
        while (!isOver) {
            const auto subscription = feed.subscribe([] {});
            auto copy = copyOf(subscription->start().state);
            std::uint64_t sequence = subscription->start().sequence;
            for (int i = 0; i < 50; ++i) {
                for (const ChangeSetPtr& changes : subscription->take()) {
                    if (changes->before.sequence < sequence) ++failures;
                    sequence = changes->after.sequence;
                    play(copy, *changes);
                    if (copy != copyOf(changes->after.state)) ++failures;
                }
                std::this_thread::yield();
            }
        }
    };
    std::thread first(read);
    std::thread second(read);
    std::mt19937 random(3);
    for (int i = 0; i < 1500; ++i) {
        const Orin::String name(std::string(1, static_cast<char>('a' + random() % 4)));
        if (random() % 3 == 0)
            tree->classifierDel(name);
        else
            term(name, Orin::String(std::to_string(random() % 3)), Orin::String(std::to_string(i)));
        feed.endRequest();
    }
    isOver = true;
    first.join();
    second.join();
    EXPECT_EQ(failures, 0);
}

}  // namespace
}  // namespace QosAgent
