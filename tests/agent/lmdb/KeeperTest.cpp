#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <mutex>
#include <random>

#include "agent/store/Keeper.h"
#include "tests/agent/lmdb/RandomLines.h"
#include "tests/agent/lmdb/StoredState.h"
#include "tests/agent/support/TemporaryFolder.h"

namespace QosAgent {
namespace {

/// A store whose commits fail while it is told so, and of which each can be held up.
class FaultyStore final : public Store {
public:
    explicit FaultyStore(std::unique_ptr<Store> store) : store_(std::move(store)) {}

    std::uint64_t lastNumber() const override { return store_->lastNumber(); }
    StoreFault read(RecordArea area, const std::string& path, const Visit& visit) override {
        return store_->read(area, path, visit);
    }
    StoreFault commit(std::span<const TransactionPtr> transactions) override {
        const std::lock_guard lock(gate);
        ++commits;
        return isFailing ? "no room" : store_->commit(transactions);
    }

    std::mutex gate;  ///< commits wait while a test holds it
    int commits = 0;
    bool isFailing = false;

private:
    std::unique_ptr<Store> store_;
};

class KeeperTest : public ::testing::Test {
protected:
    KeeperTest() : KeeperTest(std::make_unique<TemporaryFolder>()) {}

    void failing(bool isFailing) {
        const std::lock_guard lock(store.gate);
        store.isFailing = isFailing;
    }
    static std::string classMap(const std::string& name) {
        return R"({"update":"qos/status/cmapTypeStatus/mapQos/cmapStatus/)" + name +
               R"(/match/matchIpAccessGroup","value":""})";
    }
    /// Notes under the name what becomes of all that was applied so far.
    void note(const std::string& name) {
        keeper().whenKept(
            [this, name](const StoreFault& fault) { notes.push_back(name + ':' + fault); });
    }
    Keeper& keeper() { return state.keeper(); }

private:
    explicit KeeperTest(std::unique_ptr<TemporaryFolder> folder)
        : KeeperTest(std::make_unique<FaultyStore>(openedStore(*folder / "store"))) {
        folder_ = std::move(folder);
    }
    explicit KeeperTest(std::unique_ptr<FaultyStore> made) : store(*made), state(std::move(made)) {}

    std::unique_ptr<TemporaryFolder> folder_;

protected:
    FaultyStore& store;
    StoredState state;
    std::vector<std::string> notes;
};

using Notes = std::vector<std::string>;

TEST_F(KeeperTest, tellsOfEachTransactionWhenItIsKept) {
    std::vector<std::chrono::nanoseconds> times;
    keeper().keptIs([&](std::chrono::nanoseconds time) { times.push_back(time); });
    std::unique_lock held(store.gate);
    state.begin(classMap("a"));
    state.begin(R"({"echo":"x"})");
    state.begin(classMap("b"));
    keeper().poll();
    EXPECT_THAT(times, testing::IsEmpty());
    held.unlock();
    keeper().flush();
    EXPECT_THAT(times, testing::SizeIs(2));
    failing(true);
    state.begin(classMap("c"));
    keeper().flush();
    EXPECT_THAT(times, testing::SizeIs(2));
}

TEST_F(KeeperTest, answersNothingBeforeItIsKept) {
    std::unique_lock held(store.gate);
    state.begin(classMap("a"));
    note("a");
    state.begin(R"({"echo":"x"})");
    note("echo");
    keeper().poll();
    EXPECT_EQ(notes, Notes{});
    held.unlock();
    keeper().flush();
    EXPECT_EQ(notes, (Notes{"a:", "echo:"}));
}

TEST_F(KeeperTest, answersAtOnceWhatNothingComesBefore) {
    state.begin(R"({"echo":"x"})");
    note("echo");
    EXPECT_EQ(notes, Notes{"echo:"});
}

TEST_F(KeeperTest, commitsWhatGathersMeanwhileAtOnce) {
    std::unique_lock held(store.gate);
    const int before = store.commits;
    for (const char* name : {"a", "b", "c", "d", "e"})
        state.begin(classMap(name));
    held.unlock();
    keeper().flush();
    EXPECT_LE(store.commits - before, 2);
}

TEST_F(KeeperTest, refusesAllThatIsNotKeptAndNothingElse) {
    state.apply(classMap("kept"));
    const std::string kept = state.contents();
    failing(true);
    std::unique_lock held(store.gate);
    state.begin(classMap("a"));
    note("a");
    state.begin(R"({"echo":"x"})");
    note("echo");
    state.begin(classMap("b"));
    note("b");
    held.unlock();
    keeper().flush();
    EXPECT_EQ(notes, (Notes{"a:no room", "echo:", "b:no room"}));
    EXPECT_EQ(state.contents(), kept);
}

TEST_F(KeeperTest, keepsAgainWhatComesLater) {
    failing(true);
    state.apply(classMap("a"));
    failing(false);
    state.apply(classMap("b"));
    note("b");
    EXPECT_EQ(notes, Notes{"b:"});
    EXPECT_THAT(state.contents(), ::testing::HasSubstr("\"b\""));
}

TEST_F(KeeperTest, tellsSubscribersOnlyWhatIsKept) {
    state.feed().keepState();
    const auto subscription = state.feed().subscribe([] {});
    std::unique_lock held(store.gate);
    state.begin(classMap("a"));
    keeper().poll();
    EXPECT_TRUE(subscription->take().empty());
    EXPECT_FALSE(state.feed().snapshot().state.holds("classifier/a"));
    held.unlock();
    keeper().flush();
    EXPECT_EQ(subscription->take().size(), 1u);
    EXPECT_TRUE(state.feed().snapshot().state.holds("classifier/a"));
}

TEST_F(KeeperTest, tellsSubscribersNothingOfWhatWasTakenBack) {
    state.feed().keepState();
    const auto subscription = state.feed().subscribe([] {});
    failing(true);
    state.apply(classMap("a"));
    EXPECT_FALSE(state.feed().snapshot().state.holds("classifier/a"));
    for (const ChangeSetPtr& changes : subscription->take()) {
        EXPECT_TRUE(changes->updates.empty());
        EXPECT_TRUE(changes->deletes.empty());
    }
}

/// Commits that fail now and then.
class FaultyRunsTest : public ::testing::TestWithParam<unsigned> {
protected:
    TemporaryFolder folder_;
};

TEST_P(FaultyRunsTest, leaveTheInputsAsTheyAreKept) {
    RandomLines lines(GetParam());
    std::mt19937 random(GetParam());
    auto made = std::make_unique<FaultyStore>(openedStore(folder_ / "store"));
    FaultyStore& store = *made;
    std::optional<StoredState> stored(std::in_place, std::move(made));
    TextDatabase reference;
    for (int round = 0; round < 30; ++round) {
        const bool isFailing = random() % 2 == 0;
        {
            const std::lock_guard held(store.gate);
            store.isFailing = isFailing;
            for (auto count = random() % 4 + 1; count > 0; --count) {
                const std::string line = lines.next();
                stored->begin(line);
                if (!isFailing) reference.apply(line);
            }
        }
        stored->keeper().flush();
        ASSERT_EQ(inputsOf(*stored), inputsOf(reference)) << round;
    }
    {
        const std::lock_guard held(store.gate);
        store.isFailing = false;
    }
    stored->apply(R"({"update":"qos/status/cmapTypeStatus/mapPbr/cmapStatus/end","value":{}})");
    const std::string contents = stored->contents();
    stored.reset();
    EXPECT_EQ(StoredDatabase(folder_ / "store").contents(), contents);
}

INSTANTIATE_TEST_SUITE_P(Seeds, FaultyRunsTest, ::testing::Range(0U, 12U));

}  // namespace
}  // namespace QosAgent
