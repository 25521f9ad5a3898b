#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "agent/lmdb/Environment.h"
#include "agent/lmdb/StoreFolder.h"
#include "agent/store/Store.h"

namespace QosAgent::Lmdb {

/// A store in one folder, by LMDB: one table of records, and one record, `kHead`, that says which
/// format this is and which transaction was the last. A commit is written and synced before it is
/// said to be kept.
class LmdbStore final : public Store {
public:
    /// Called before each step of a commit, for tests that stop the program there.
    using Step = std::function<void(const char* name)>;

    /// Opens the store in the folder, or makes a new one if there is none. One that is there is
    /// checked whole before it is used.
    static OpenedStore open(const std::string& folder, Step step = {});

    std::uint64_t lastNumber() const override { return lastNumber_; }
    StoreFault read(RecordArea area, const std::string& path, const Visit& visit) override;
    StoreFault commit(std::span<const TransactionPtr> transactions) override;

private:
    LmdbStore(StoreFolder folder, Step step) : folder_(std::move(folder)), step_(std::move(step)) {}

    StoreFault makeNew();
    StoreFault use();
    StoreFault readHead();
    int tryCommit(std::span<const TransactionPtr> transactions);
    int grow();
    void reached(const char* step) const {
        if (step_) step_(step);
    }

    StoreFolder folder_;  ///< first: the lock is let go last
    Step step_;
    Environment env_;
    MDB_dbi records_ = 0;
    std::uint64_t lastNumber_ = 0;
};

}  // namespace QosAgent::Lmdb
