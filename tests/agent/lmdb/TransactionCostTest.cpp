#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "tests/agent/lmdb/StoredState.h"
#include "tests/agent/support/Configurations.h"
#include "tests/agent/support/TemporaryFolder.h"

namespace QosAgent {
namespace {

/// Passes transactions on, and remembers the last one.
class WatchedStore final : public Store {
public:
    explicit WatchedStore(std::unique_ptr<Store> store) : store_(std::move(store)) {}

    std::uint64_t lastNumber() const override { return store_->lastNumber(); }
    StoreFault read(RecordArea area, const std::string& path, const Visit& visit) override {
        return store_->read(area, path, visit);
    }
    StoreFault commit(std::span<const TransactionPtr> transactions) override {
        last = transactions.back();
        return store_->commit(transactions);
    }

    TransactionPtr last;

private:
    std::unique_ptr<Store> store_;
};

/// What a request costs to keep: what its transaction says.
class TransactionCostTest : public ::testing::Test {
protected:
    TransactionCostTest() : TransactionCostTest(std::make_unique<TemporaryFolder>()) {}

    /// `AREA PATH` of each edit that the line makes, in order.
    std::vector<std::string> editsOf(const std::string& line) {
        EXPECT_EQ(state.apply(line), "");
        std::vector<std::string> edits;
        for (const RecordEdit& edit : store.last->edits)
            edits.push_back(static_cast<char>(edit.key.area) + (' ' + edit.key.path));
        return edits;
    }
    static std::string ruleLine(const std::string& rule, unsigned dscp) {
        return R"({"update":"acl/config/cli/aclTypeConfig/ipv4/aclConfig/large/aclSubConfig/)"
               R"(ipRuleById/)" +
               rule + R"(","value":{"filter":{"dscpValue":)" + std::to_string(dscp) + "}}}";
    }

private:
    explicit TransactionCostTest(std::unique_ptr<TemporaryFolder> folder)
        : TransactionCostTest(std::make_unique<WatchedStore>(openedStore(*folder / "store"))) {
        folder_ = std::move(folder);
    }
    explicit TransactionCostTest(std::unique_ptr<WatchedStore> made)
        : store(*made), state(std::move(made)) {}

    std::unique_ptr<TemporaryFolder> folder_;

protected:
    WatchedStore& store;
    StoredState state;
};

using Edits = std::vector<std::string>;

TEST_F(TransactionCostTest, isOneRecordForOneRuleOfALongList) {
    std::string rules;
    for (int i = 1; i <= 4096; ++i)
        rules += (i == 1 ? "\"" : ",\"") + std::to_string(i) + R"(":{"filter":{"dscpValue":1}})";
    state.apply(
        R"({"update":"acl/config/cli/aclTypeConfig/ipv4/aclConfig/large","value":{"aclSubConfig":)"
        R"({"ipRuleById":{)" +
        rules + "}}}}");
    const std::string path = "acl/config/cli/aclTypeConfig/ipv4/aclConfig/large/aclSubConfig/";
    EXPECT_EQ(editsOf(ruleLine("77", 9)), Edits{"i " + path + "ipRuleById/77"});
}

TEST_F(TransactionCostTest, isTheSameForATermWhateverElseIsConfigured) {
    const std::string line =
        R"({"configure":[{"replace":"/qos/classifiers/classifier[name=classifier-0])"
        R"(/terms/term[id=term-1]/conditions/ipv4/config","value":{"dscp":17}}]})";
    state.apply("{\"openconfig\":" + documentOf(bigConfiguration(2, 3, 1)) + "}");
    Edits few = editsOf(line);
    state.apply("{\"openconfig\":" + documentOf(bigConfiguration(2, 600, 1)) + "}");
    Edits many = editsOf(line);
    EXPECT_EQ(few, many);
    EXPECT_FALSE(few.empty());
    EXPECT_LE(few.size(), 12u);
}

TEST_F(TransactionCostTest, isNothingWhereNothingChanges) {
    state.apply(R"({"update":"qos/status/cmapTypeStatus/mapQos/cmapStatus/a","value":{}})");
    const TransactionPtr before = store.last;
    state.apply(R"({"touch":"qos/status/cmapTypeStatus/mapQos/cmapStatus/a"})");
    state.apply(R"({"print":"state"})");
    EXPECT_EQ(store.last, before);
}

}  // namespace
}  // namespace QosAgent
