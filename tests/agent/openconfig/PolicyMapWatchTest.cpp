#include "agent/openconfig/PolicyMapWatch.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/agent/support/TextDatabase.h"

namespace QosAgent {
namespace {

using Texts = std::vector<std::string>;

const std::string kMaps = "qos/status/pmapTypeStatus/mapQos/pmapStatus";

class PolicyMapWatchTest : public ::testing::Test {
protected:
    Texts names() {
        Texts names;
        watch.names().each([&](const std::string& name) { names.push_back(name); });
        return names;
    }

    TextDatabase db;
    PolicyMapWatch watch{db.database};
};

TEST_F(PolicyMapWatchTest, followsPolicyMapsThatComeAndGo) {
    EXPECT_EQ(names(), Texts{});
    db.update(kMaps + "/b~1c", "{}");
    db.update(kMaps + "/a", "{}");
    EXPECT_EQ(names(), (Texts{"a", "b/c"}));
    db.remove(kMaps + "/a");
    EXPECT_EQ(names(), (Texts{"b/c"}));
    db.remove("qos/status/pmapTypeStatus/mapQos");
    EXPECT_EQ(names(), Texts{});
}

TEST_F(PolicyMapWatchTest, knowsWhatWasThereBefore) {
    db.update(kMaps + "/a", "{}");
    PolicyMapWatch later(db.database);
    EXPECT_TRUE(later.names().contains("a"));
}

TEST_F(PolicyMapWatchTest, givesOutTheSameNamesWhileNoneComesOrGoes) {
    db.update(kMaps + "/a", "{}");
    const PolicyMapNames before = watch.names();
    db.update(kMaps + "/a/version", "7");
    EXPECT_TRUE(watch.names().isSame(before));
    db.update(kMaps + "/b", "{}");
    EXPECT_FALSE(watch.names().isSame(before));
    EXPECT_FALSE(before.contains("b"));
}

TEST_F(PolicyMapWatchTest, findsThePolicyMapOfAPair) {
    db.update(kMaps + "/openconfig:a%3A:", "{}");
    EXPECT_TRUE(watch.names().containsOfPair("a:", ""));
    EXPECT_FALSE(watch.names().containsOfPair("a:", "b"));
}

}  // namespace
}  // namespace QosAgent
