#include <gtest/gtest.h>

#include "platform/Qos/TcByForwardingGroup.h"
#include "tests/support/Printers.h"

namespace Qos {
namespace {

class TcByForwardingGroupTest : public ::testing::Test {
protected:
    void enter(const char* group) { groups.enter(Orin::String(group), 5); }

    TcByForwardingGroup groups;
};

TEST_F(TcByForwardingGroupTest, hasTheLeastGroupOfAClassWhicheverCameFirst) {
    enter("silver");
    enter("gold");
    enter("lead");
    EXPECT_EQ(groups.forwardingGroup(5), "gold");
    EXPECT_EQ(groups.forwardingGroup(6), "");
}

TEST_F(TcByForwardingGroupTest, hasTheNextOnceTheLeastIsGone) {
    enter("gold");
    enter("lead");
    groups.remove("gold");
    EXPECT_EQ(groups.forwardingGroup(5), "lead");
    groups.remove("lead");
    EXPECT_EQ(groups.forwardingGroup(5), "");
}

TEST_F(TcByForwardingGroupTest, forgetsAGroupThatWasNotTheLeast) {
    enter("gold");
    enter("lead");
    enter("silver");
    groups.remove("lead");
    EXPECT_EQ(groups.forwardingGroup(5), "gold");
    groups.remove("gold");
    EXPECT_EQ(groups.forwardingGroup(5), "silver");
}

}  // namespace
}  // namespace Qos
