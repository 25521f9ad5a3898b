#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <functional>

#include "tests/agent/lmdb/LmdbStoreFixture.h"

namespace QosAgent::Lmdb {
namespace {

using ::testing::EndsWith;

/// A process of its own is stopped at each step of a commit.
class KilledStoreTest : public LmdbStoreTest {
protected:
    /// Runs the task in a child that is killed when it reaches the step for the `nth` time. Returns
    /// whether it did.
    bool isKilledAt(const std::string& step, int nth, const std::function<void()>& task) {
        const pid_t child = ::fork();
        if (child == 0) {
            store_.reset();
            int count = 0;
            const OpenedStore opened = LmdbStore::open(folder(), [&](const char* reached) {
                if (step == reached && ++count == nth) ::kill(::getpid(), SIGKILL);
            });
            if (std::holds_alternative<StoreFault>(opened)) ::_exit(2);
            child_ = std::get<std::unique_ptr<Store>>(opened).get();
            task();
            ::_exit(0);
        }
        int status = 0;
        EXPECT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFSIGNALED(status) || WEXITSTATUS(status) == 0);
        return WIFSIGNALED(status);
    }
    void commitInChild(std::uint64_t number) const {
        Transaction transaction;
        transaction.number = number;
        for (int i = 0; i < 500; ++i)
            transaction.edits.push_back(put(std::to_string(i), std::to_string(number)));
        const TransactionPtr shared = std::make_shared<const Transaction>(std::move(transaction));
        if (!child_->commit(std::span(&shared, 1)).empty()) ::_exit(3);
    }

    Store* child_ = nullptr;
};

TEST_F(KilledStoreTest, holdsAllOfATransactionOrNothing) {
    for (const char* step : {"begin", "commit", "committed"}) {
        for (std::uint64_t number = 2; number < 5; ++number) {
            std::filesystem::remove_all(folder());
            EXPECT_TRUE(isKilledAt(step, static_cast<int>(number), [&] {
                for (std::uint64_t i = 1; i <= number; ++i)
                    commitInChild(i);
            }));
            open();
            const std::uint64_t kept = std::string(step) == "committed" ? number : number - 1;
            EXPECT_EQ(store_->lastNumber(), kept) << step;
            const Records records = read();
            EXPECT_EQ(records.size(), 500u);
            for (const auto& [path, value] : records)
                EXPECT_EQ(value, std::to_string(kept));
        }
    }
}

TEST_F(KilledStoreTest, isMadeWholeOrNotAtAll) {
    for (const char* step : {"make", "sync", "rename", "renamed"}) {
        std::filesystem::remove_all(folder());
        EXPECT_TRUE(isKilledAt(step, 1, [] {})) << step;
        open();
        EXPECT_EQ(store_->lastNumber(), 0u);
        EXPECT_EQ(commit({put("a", "1")}), "");
    }
}

/// With a limit on the size of files, writes fail as they do on a full disk.
class FullStoreTest : public LmdbStoreTest {
protected:
    FullStoreTest() : before_(std::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &unlimited_);
    }
    ~FullStoreTest() override {
        limit(unlimited_.rlim_cur);
        std::signal(SIGXFSZ, before_);
    }
    void limit(rlim_t bytes) const {
        rlimit limit = unlimited_;
        limit.rlim_cur = bytes;
        EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
    }

    void (*before_)(int);
    rlimit unlimited_{};
};

TEST_F(FullStoreTest, refusesWhatHasNoRoomAndHoldsTheRest) {
    open();
    EXPECT_EQ(commit({put("a", "1")}), "");
    limit(4096);
    EXPECT_EQ(commit({put("b", std::string(100'000, 'x'))}), "File too large");
    EXPECT_EQ(store_->lastNumber(), 1u);
    EXPECT_EQ(read(), (Records{{"a", "1"}}));
    limit(unlimited_.rlim_cur);
    EXPECT_EQ(commit({put("c", "3")}), "");
    open();
    EXPECT_EQ(read(), (Records{{"a", "1"}, {"c", "3"}}));
}

TEST_F(FullStoreTest, isNotMadeWhereThereIsNoRoom) {
    limit(0);
    EXPECT_THAT(openFault(), EndsWith("cannot hold a store: File too large"));
    limit(unlimited_.rlim_cur);
    open();
}

}  // namespace
}  // namespace QosAgent::Lmdb
