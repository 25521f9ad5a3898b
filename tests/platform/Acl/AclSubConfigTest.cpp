#include <gtest/gtest.h>

#include <vector>

#include "platform/Acl/AclSubConfig.h"
#include "tests/support/RecordingSubscriber.h"

namespace Acl {
namespace {

class AclSubConfigTest : public ::testing::Test {
protected:
    Orin::Ptr<AclSubConfig> config = AclSubConfig::create();
};

TEST_F(AclSubConfigTest, forgetsAndTellsOfRulesThatAreDeleted) {
    config->ipRuleByIdIs({1}, IpRuleConfig());
    config->ip6RuleByIdIs({1}, Ip6RuleConfig());
    const TestSupport::RecordingSubscriber heard(*config);
    config->ipRuleByIdDel({1});
    EXPECT_TRUE(config->ipRuleById().empty());
    EXPECT_EQ(config->ip6RuleById().size(), 1u);
    config->ip6RuleByIdDel({1});
    EXPECT_TRUE(config->ip6RuleById().empty());
    std::vector<Orin::AttributeId> told;
    for (const TestSupport::Change& change : heard.changes())
        told.push_back(change.id);
    EXPECT_EQ(told, (std::vector{AclSubConfig::kIpRuleById.id, AclSubConfig::kIp6RuleById.id}));
}

TEST_F(AclSubConfigTest, hasRulesThatMatchNoDscpUnlessTheySay) {
    const IpFilter ip;
    EXPECT_FALSE(ip.dscpEnabled);
    EXPECT_EQ(ip.dscpValue, 0);
    const Ip6Filter ip6;
    EXPECT_EQ(ip6.trafficClass, 0);
    EXPECT_EQ(ip6.trafficClassMask, 0);
}

}  // namespace
}  // namespace Acl
